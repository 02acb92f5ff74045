#include "sys/platform/splitPlainPath.h"

namespace sys::platform {

bool splitPlainPath(std::string_view path, char const* reserved, std::vector<std::string>& names) {
    for (;;) {
        std::size_t const end = path.find('/');
        std::string_view const name = path.substr(0, end);
        if (name.empty() || name == "." || name == ".." ||
            name.find_first_of(reserved) != name.npos) {
            return false;
        }
        names.emplace_back(name);
        if (end == path.npos) {
            return true;
        }
        path.remove_prefix(end + 1);
    }
}

}  // namespace sys::platform
