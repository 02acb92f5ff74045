#include "sys/ConfFile.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "core/stream/MemoryStream.h"
#include "core/text/StringArray.h"
#include "core/text/parseNumber.h"
#include "sys/file.h"

namespace sys {

using core::String;

namespace {

String keyOf(String const& name) {
    return name.LowerCase();
}

}  // namespace

int ConfFile::Load(String const& path) {
    core::MemoryStream content;
    int const result = file::readRegularFile(content, path);
    if (result != 0) {
        return result;
    }
    std::string_view const bytes = content.View();
    if (std::size_t const nul = bytes.find('\0'); nul != bytes.npos) {
        auto const line = std::count(bytes.begin(), bytes.begin() + static_cast<long>(nul), '\n');
        AddError(core::message("line %1", line + 1), "contains a NUL character");
    }
    core::StringArray lines;
    lines.LoadAsConfFileFrom(&content);
    for (int i = 0; i < lines.Count(); ++i) {
        String const name = lines.GetNameByIndex(i);
        if (name.IsEmpty()) {
            AddError(lines[i], "is not a name-value pair");
        } else if (!entries_.emplace(keyOf(name), lines.GetValueByIndex(i)).second) {
            AddError(name, "appears twice");
        }
    }
    return 0;
}

bool ConfFile::Has(String const& name) const {
    return entries_.count(keyOf(name)) > 0;
}

std::set<unsigned long long> ConfFile::NumbersOf(String const& list) const {
    std::set<unsigned long long> numbers;
    String const prefix = keyOf(list) + "[";
    for (auto entry = entries_.lower_bound(prefix);
         entry != entries_.end() && entry->first.StartsWith(prefix); ++entry) {
        String const digits = entry->first.Copy(prefix.GetLength()).LeftOf(']');
        String const name = prefix + digits + "]";
        unsigned long long number = 0;
        if ((entry->first == name || entry->first.StartsWith(name + ".")) &&
            core::parseWhole(digits.View(), 10, UINT64_MAX, number) &&
            core::message("%1", number) == digits) {
            numbers.insert(number);
        }
    }
    return numbers;
}

bool ConfFile::Take(String const& name, String& value) {
    auto const found = entries_.find(keyOf(name));
    if (found == entries_.end()) {
        return false;
    }
    value = found->second;
    entries_.erase(found);
    return true;
}

bool ConfFile::TakeNumber(String const& name, int base, unsigned long long largest,
                          unsigned long long& value) {
    String text;
    if (!Take(name, text)) {
        return false;
    }
    if (!core::parseWhole(text.View(), base, largest, value)) {
        AddError(name, String::format("must be %1 number from 0 to %2")
                           .argi(1, base == 8 ? "an octal" : "a")
                           .argi(2, largest, 0, base == 8 ? 8 : 10));
        value = 0;
        return false;
    }
    return true;
}

void ConfFile::RejectUnknown() {
    for (auto const& [name, value] : entries_) {
        AddError(name, "is unknown");
    }
}

void ConfFile::AddError(String const& name, String const& fact) {
    errors_.push_back(core::fault(title_, "%1 %2", name, fact));
}

}  // namespace sys
