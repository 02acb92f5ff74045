#include "sys/matchesPattern.h"

namespace sys {

bool matchesPattern(std::string_view name, std::string_view pattern) {
    constexpr auto none = std::string_view::npos;
    std::size_t at = 0;
    std::size_t next = 0;
    // The last star, and how much of the name it has been given: only that one is ever widened,
    // so that patterns of many stars cost no more than name times pattern.
    std::size_t star = none;
    std::size_t given = 0;
    while (at < name.size()) {
        if (next < pattern.size() && pattern[next] == '*') {
            star = next++;
            given = at;
        } else if (next < pattern.size() && (pattern[next] == '?' || pattern[next] == name[at])) {
            ++next;
            ++at;
        } else if (star != none) {
            next = star + 1;
            at = ++given;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', next) == none;
}

}  // namespace sys
