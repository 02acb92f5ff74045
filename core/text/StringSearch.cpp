#include <algorithm>

#include "core/text/String.h"
#include "core/text/TextBuilder.h"

namespace core {

namespace {

int toPosition(std::size_t found) {
    return found != std::string_view::npos ? static_cast<int>(found) : -1;
}

std::size_t toIndex(int start) {
    return static_cast<std::size_t>(std::max(start, 0));
}

bool equalIC(char left, char right) {
    return String::ToUpper(left) == String::ToUpper(right);
}

/// Returns the first occurrence of pattern at or after start, or npos. An empty pattern is found at
/// the end of text.
std::size_t findText(std::string_view text, std::string_view pattern, std::size_t start) {
    if (pattern.empty()) {
        return start <= text.size() ? text.size() : std::string_view::npos;
    }
    // Most patterns are one character, for which this is twice as fast.
    return pattern.size() == 1 ? text.find(pattern.front(), start) : text.find(pattern, start);
}

/// The same, ignoring case.
std::size_t findTextIC(std::string_view text, std::string_view pattern, std::size_t start) {
    if (pattern.empty() || start > text.size()) {
        return findText(text, pattern, start);
    }
    auto const found = std::search(text.begin() + static_cast<std::ptrdiff_t>(start), text.end(),
                                   pattern.begin(), pattern.end(), equalIC);
    return found != text.end() ? static_cast<std::size_t>(found - text.begin())
                               : std::string_view::npos;
}

/// Returns the last occurrence that begins at or before start, ignoring case, or npos. An empty
/// pattern is found at start or, if that is less, at the end of text.
std::size_t rfindTextIC(std::string_view text, std::string_view pattern, std::size_t start) {
    // A match may begin at start and end after it.
    text = text.substr(0, start + pattern.size());
    if (pattern.empty()) {
        return text.size();
    }
    auto const found =
        std::find_end(text.begin(), text.end(), pattern.begin(), pattern.end(), equalIC);
    return found != text.end() ? static_cast<std::size_t>(found - text.begin())
                               : std::string_view::npos;
}

template <class Find>
String replace(String const& text, std::string_view pattern, std::string_view with, Find find) {
    std::string_view const whole = text.View();
    std::size_t found = find(whole, pattern, 0);
    if (whole.empty() || found == std::string_view::npos) {
        return text;
    }
    TextBuilder result;
    std::size_t done = 0;
    while (found != std::string_view::npos) {
        result.Append(whole.substr(done, found - done));
        result.Append(with);
        done = found + pattern.size();
        // Stop at the end, where an empty pattern would be found again and again.
        found = done < whole.size() ? find(whole, pattern, done) : std::string_view::npos;
    }
    result.Append(whole.substr(done));
    return result.View() == whole ? text : result.AsString();
}

}  // namespace

int String::Find(char c, int start) const {
    return toPosition(View().find(c, toIndex(start)));
}

int String::Find(String const& pattern, int start) const {
    return toPosition(findText(View(), pattern.View(), toIndex(start)));
}

int String::FindIC(char c, int start) const {
    return toPosition(findTextIC(View(), {&c, 1}, toIndex(start)));
}

int String::FindIC(String const& pattern, int start) const {
    return toPosition(findTextIC(View(), pattern.View(), toIndex(start)));
}

int String::RFind(char c, int start) const {
    return start < 0 ? -1 : toPosition(View().rfind(c, toIndex(start)));
}

int String::RFind(String const& pattern, int start) const {
    return start < 0 ? -1 : toPosition(View().rfind(pattern.View(), toIndex(start)));
}

int String::RFindIC(char c, int start) const {
    return start < 0 ? -1 : toPosition(rfindTextIC(View(), {&c, 1}, toIndex(start)));
}

int String::RFindIC(String const& pattern, int start) const {
    return start < 0 ? -1 : toPosition(rfindTextIC(View(), pattern.View(), toIndex(start)));
}

int String::CountChars(char c) const {
    std::string_view const text = View();
    return static_cast<int>(std::count(text.begin(), text.end(), c));
}

bool String::IsDelimiter(String const& set, int index) const {
    char const c = GetChar(index);
    return c != '\0' && set.Find(c) >= 0;
}

int String::FindDelimiter(String const& set, int start) const {
    return toPosition(View().find_first_of(set.View(), toIndex(start)));
}

int String::FindNotDelimiter(String const& set, int start) const {
    return toPosition(View().find_first_not_of(set.View(), toIndex(start)));
}

int String::LastDelimiter(String const& set) const {
    return toPosition(View().find_last_of(set.View()));
}

int String::LastNotDelimiter(String const& set) const {
    return toPosition(View().find_last_not_of(set.View()));
}

bool String::HasTrailingDelimiter(String const& set) const {
    return IsDelimiter(set, GetLength() - 1);
}

String String::ForceTrailingDelimiter(String const& set, char delimiter) const {
    return HasTrailingDelimiter(set) ? *this : AppendNew(delimiter);
}

String String::Replace(String const& find, String const& with) const {
    return replace(*this, find.View(), with.View(), findText);
}

String String::ReplaceIC(String const& find, String const& with) const {
    return replace(*this, find.View(), with.View(), findTextIC);
}

String String::ReplaceNewLine(String const& with) const {
    std::string_view rest = View();
    TextBuilder result;
    for (;;) {
        std::size_t const line = rest.find_first_of("\r\n");
        result.Append(rest.substr(0, line));
        if (line == std::string_view::npos) {
            return Join(result.View());
        }
        result.Append(with.View());
        rest.remove_prefix(line + (rest.substr(line).starts_with("\r\n") ? 2 : 1));
    }
}

String String::FilterNewLineChar(char c) const {
    TextBuilder result;
    for (char each : View()) {
        result.Append(IsNewLine(each) ? c : each);
    }
    return Join(result.View());
}

}  // namespace core
