#include <algorithm>
#include <vector>

#include "core/runtime/Application.h"
#include "fuzz/Input.h"
#include "fuzz/require.h"
#include "tests/support/StatusDirectory.h"

namespace {

using core::Application;
using core::String;
using core::StringArray;

struct FuzzedApplication : private support::StatusDirectory, public Application {
    FuzzedApplication() : Application("options") {}
};

Application& application() {
    static FuzzedApplication theApplication;
    return theApplication;
}

struct Stored {
    String shortName;
    String longName;
    String values;
};

std::vector<Stored> storedOptions() {
    std::vector<Stored> all(static_cast<std::size_t>(application().CountOptions()));
    for (std::size_t i = 0; i < all.size(); ++i) {
        Stored& each = all[i];
        require(application().GetOption(static_cast<int>(i), each.shortName, each.longName,
                                        each.values));
    }
    return all;
}

/// Whether the grammar allows the option with its number of values.
bool allows(StringArray const& grammar, Stored const& option) {
    int const given = option.values.IsEmpty() ? 0 : option.values.CountChars('|') + 1;
    for (int i = 0; i < grammar.Count(); ++i) {
        String shortName;
        String longName;
        Application::SplitOption(grammar.GetNameByIndex(i), shortName, longName);
        if (shortName == option.shortName && longName == option.longName &&
            std::max(grammar.GetValueByIndex(i).ToDecimal32(), 0) == given) {
            return true;
        }
    }
    return false;
}

/// Whether the grammar is unambiguous: each entry has both names and shares none.
bool isUnambiguous(StringArray const& grammar) {
    for (int i = 0; i < grammar.Count(); ++i) {
        String shortName;
        String longName;
        Application::SplitOption(grammar.GetNameByIndex(i), shortName, longName);
        if (shortName.IsEmpty() || longName.IsEmpty()) {
            return false;
        }
        for (int other = 0; other < i; ++other) {
            if (Application::SameOption(grammar.GetNameByIndex(other), grammar.GetNameByIndex(i))) {
                return false;
            }
        }
    }
    return true;
}

void requireConsistency(String const& grammar, std::vector<Stored> const& options,
                        StringArray const& errors, std::size_t given) {
    StringArray entries;
    grammar.Split(entries, '>');
    bool const unambiguous = isUnambiguous(entries);
    for (Stored const& option : options) {
        require(!unambiguous || allows(entries, option));
        String values;
        require(option.shortName.IsEmpty() ||
                application().GetOptionValues(option.shortName, values));
    }
    for (int i = 0; i < errors.Count(); ++i) {
        String const title = errors.GetNameByIndex(i);
        require(title == "Invalid option" || title == "Invalid number of arguments");
    }
    std::size_t const accountedFor = options.size() + static_cast<std::size_t>(errors.Count());
    require(accountedFor <= given && (accountedFor > 0 || given == 0));
}

}  // namespace

/// The input is a line with the grammar, then a line for each argument.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Input input(data, size);
    String const grammar(input.Line().c_str());
    std::vector<std::string> lines = {"program"};
    while (!input.IsEmpty()) {
        lines.push_back(input.Line());
    }
    std::vector<char const*> arguments;
    for (std::string const& line : lines) {
        arguments.push_back(line.c_str());
    }

    // Twice, because the second call must start with an empty list.
    for (int round = 0; round < 2; ++round) {
        StringArray errors;
        require(application().CommandLinePrepare(static_cast<int>(arguments.size()),
                                                 arguments.data(), grammar, errors));
        auto const given = std::count_if(lines.begin(), lines.end(),
                                         [](auto const& line) { return line.starts_with('-'); });
        requireConsistency(grammar, storedOptions(), errors, static_cast<std::size_t>(given));
    }
    return 0;
}
