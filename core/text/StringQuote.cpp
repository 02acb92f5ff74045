#include <algorithm>

#include "core/text/String.h"

namespace core {

namespace {

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
