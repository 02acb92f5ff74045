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

}  // namespace core
