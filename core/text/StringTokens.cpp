#include <algorithm>

#include "core/text/String.h"
#include "core/text/StringArray.h"

namespace core {

namespace {

/// Cuts text in two around the delimiter at found; the part to keep goes back into text.
String cut(String& text, int found, bool keepLeft) {
    if (found < 0) {
        return std::exchange(text, String());
    }
    String const left = text.Left(found);
    String const right = text.Copy(found + 1);
    text = keepLeft ? left : right;
    return keepLeft ? right : left;
}

constexpr std::string_view blank = " \t\r\n";
constexpr std::string_view betweenProperties = " \t\r\n,;";

std::string_view withoutFront(std::string_view text, std::string_view set) {
    return text.substr(std::min(text.find_first_not_of(set), text.size()));
}

/// Takes the characters before the first of set away from text.
std::string_view take(std::string_view& text, std::string_view set) {
    std::string_view const taken = text.substr(0, text.find_first_of(set));
    text.remove_prefix(taken.size());
    return taken;
}

/// Takes a value, and the quotes around it, away from text.
std::string_view takeValue(std::string_view& text) {
    if (!text.starts_with('"') && !text.starts_with('\'')) {
        return take(text, betweenProperties);
    }
    std::string_view const quote = text.substr(0, 1);
    text.remove_prefix(1);
    std::string_view const value = take(text, quote);
    text.remove_prefix(std::min<std::size_t>(1, text.size()));
    return value;
}

}  // namespace

int String::Split(StringArray& out, String const& delimiters) const {
    // Both texts may be entries of out: adding leaves them where they are.
    for (std::string_view rest = View(); !rest.empty();) {
        std::string_view const piece = rest.substr(0, rest.find_first_of(delimiters.View()));
        out.Add(String(piece));
        rest.remove_prefix(std::min(piece.size() + 1, rest.size()));
    }
    return out.Count();
}

int String::Split(StringArray& out, char delimiter) const {
    return Split(out, OfChar(delimiter, 1));
}

String String::ExtractNextToken(String const& delimiters) {
    return cut(*this, FindDelimiter(delimiters), false);
}

String String::ExtractNextToken(char delimiter) {
    return cut(*this, Find(delimiter), false);
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
            return cut(*this, static_cast<int>(i), false);
        }
    }
    return cut(*this, -1, false);
}

String String::ExtractLastToken(String const& delimiters) {
    return cut(*this, LastDelimiter(delimiters), true);
}

String String::ExtractLastToken(char delimiter) {
    return cut(*this, RFind(delimiter), true);
}

String String::Quote(char quote) const {
    std::string_view const mark(&quote, quote != '\0' ? 1 : 0);
    return joined(mark, View(), mark);
}

String String::Unquote(char quote) const {
    std::string_view const text = View();
    if (text.size() < 2 || text.front() != quote || text.back() != quote) {
        return *this;
    }
    return joined(text.substr(1, text.size() - 2));
}

String String::GetProperty(String const& name, int start) const {
    std::string_view rest = View();
    rest.remove_prefix(std::min(static_cast<std::size_t>(std::max(start, 0)), rest.size()));
    for (;;) {
        rest = withoutFront(rest, betweenProperties);
        if (rest.empty()) {
            return {};
        }
        String const found(take(rest, " \t\r\n,;="));
        std::string_view behind = withoutFront(rest, blank);
        if (!behind.starts_with('=')) {
            continue;
        }
        rest = withoutFront(behind.substr(1), blank);
        String value(takeValue(rest));
        if (!found.IsEmpty() && found.CompareIC(name) == 0) {
            return value;
        }
    }
}

}  // namespace core
