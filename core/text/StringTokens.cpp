#include <algorithm>

#include "core/text/String.h"
#include "core/text/StringArray.h"

namespace core {

namespace {

enum class Keep { left, right };

/// Splits text at the delimiter at found; keeps one part in text and returns the other, or the
/// whole text if found is negative.
String split(String& text, int found, Keep keep) {
    if (found < 0) {
        return std::exchange(text, String());
    }
    String left = text.Left(found);
    String right = text.Copy(found + 1);
    text = keep == Keep::left ? left : right;
    return keep == Keep::left ? right : left;
}

constexpr std::string_view whiteSpace = " \t\r\n";
constexpr std::string_view propertySeparators = " \t\r\n,;";

std::string_view withoutLeading(std::string_view text, std::string_view set) {
    return text.substr(std::min(text.find_first_not_of(set), text.size()));
}

/// Removes the characters before the first one in set from text and returns them.
std::string_view extract(std::string_view& text, std::string_view set) {
    std::string_view const result = text.substr(0, text.find_first_of(set));
    text.remove_prefix(result.size());
    return result;
}

/// Removes a value and its quotes from text and returns the value.
std::string_view extractValue(std::string_view& text) {
    if (!text.starts_with('"') && !text.starts_with('\'')) {
        return extract(text, propertySeparators);
    }
    std::string_view const quote = text.substr(0, 1);
    text.remove_prefix(1);
    std::string_view const value = extract(text, quote);
    text.remove_prefix(std::min<std::size_t>(1, text.size()));
    return value;
}

}  // namespace

int String::Split(StringArray& out, String const& delimiters) const {
    // Both strings may be entries of out: adding entries does not move them.
    std::string_view const set = delimiters.View();
    for (std::string_view rest = View(); !rest.empty();) {
        std::string_view const part =
            rest.substr(0, set.size() == 1 ? rest.find(set.front()) : rest.find_first_of(set));
        String entry;
        entry.SetParts(part);
        out.Add(entry);
        rest.remove_prefix(std::min(part.size() + 1, rest.size()));
    }
    return out.Count();
}

int String::Split(StringArray& out, char delimiter) const {
    return Split(out, OfChar(delimiter, 1));
}

String String::ExtractNextToken(String const& delimiters) {
    return split(*this, FindDelimiter(delimiters), Keep::right);
}

String String::ExtractNextToken(char delimiter) {
    return split(*this, Find(delimiter), Keep::right);
}

String String::ExtractNextToken(String const& delimiters, String const& quotes) {
    std::string_view const text = View();
    char open = '\0';
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (open != '\0') {
            open = text[i] == open ? '\0' : open;
        } else if (quotes.Find(text[i]) >= 0) {
            open = text[i];
        } else if (delimiters.Find(text[i]) >= 0) {
            return split(*this, static_cast<int>(i), Keep::right);
        }
    }
    return split(*this, -1, Keep::right);
}

String String::ExtractLastToken(String const& delimiters) {
    return split(*this, LastDelimiter(delimiters), Keep::left);
}

String String::ExtractLastToken(char delimiter) {
    return split(*this, RFind(delimiter), Keep::left);
}

String String::Quote(char quote) const {
    std::string_view const quotes(&quote, quote != '\0' ? 1 : 0);
    return Join(quotes, View(), quotes);
}

String String::Unquote(char quote) const {
    std::string_view const text = View();
    if (text.size() < 2 || text.front() != quote || text.back() != quote) {
        return *this;
    }
    return Join(text.substr(1, text.size() - 2));
}

String String::GetProperty(String const& name, int start) const {
    std::string_view rest = View();
    rest.remove_prefix(std::min(static_cast<std::size_t>(std::max(start, 0)), rest.size()));
    for (;;) {
        rest = withoutLeading(rest, propertySeparators);
        if (rest.empty()) {
            return {};
        }
        String const found(extract(rest, " \t\r\n,;="));
        std::string_view const next = withoutLeading(rest, whiteSpace);
        if (!next.starts_with('=')) {
            continue;
        }
        rest = withoutLeading(next.substr(1), whiteSpace);
        String value(extractValue(rest));
        if (!found.IsEmpty() && found.CompareIC(name) == 0) {
            return value;
        }
    }
}

}  // namespace core
