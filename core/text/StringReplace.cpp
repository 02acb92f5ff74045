#include "core/text/String.h"
#include "core/text/TextBuilder.h"
#include "core/text/findText.h"

namespace core {

namespace {

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
        // Not behind the end, where the empty pattern would be found again and again.
        found = done < whole.size() ? find(whole, pattern, done) : std::string_view::npos;
    }
    result.Append(whole.substr(done));
    return result.View() == whole ? text : result.AsString();
}

}  // namespace

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
            return joined(result.View());
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
    return joined(result.View());
}

}  // namespace core
