#include "core/text/errnoDescription.h"

#include <string>
#include <system_error>

namespace core {

String errnoDescription(int number) {
    constexpr int longest = 2048;
    return String(std::generic_category().message(number).c_str()).Left(longest);
}

}  // namespace core
