#include "core/text/findText.h"

#include <algorithm>

#include "core/text/String.h"

namespace core {

namespace {

bool equalIC(char left, char right) {
    return String::ToUpper(left) == String::ToUpper(right);
}

}  // namespace

std::size_t findText(std::string_view text, std::string_view pattern, std::size_t start) {
    if (pattern.empty()) {
        return start <= text.size() ? text.size() : std::string_view::npos;
    }
    return text.find(pattern, start);
}

std::size_t findTextIC(std::string_view text, std::string_view pattern, std::size_t start) {
    if (pattern.empty() || start > text.size()) {
        return findText(text, pattern, start);
    }
    auto const found = std::search(text.begin() + static_cast<std::ptrdiff_t>(start), text.end(),
                                   pattern.begin(), pattern.end(), equalIC);
    return found != text.end() ? static_cast<std::size_t>(found - text.begin())
                               : std::string_view::npos;
}

std::size_t rfindTextIC(std::string_view text, std::string_view pattern, std::size_t start) {
    // A match may begin at start and reach past it.
    text = text.substr(0, start + pattern.size());
    if (pattern.empty()) {
        return text.size();
    }
    auto const found =
        std::find_end(text.begin(), text.end(), pattern.begin(), pattern.end(), equalIC);
    return found != text.end() ? static_cast<std::size_t>(found - text.begin())
                               : std::string_view::npos;
}

}  // namespace core
