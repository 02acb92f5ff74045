#include "sys/platform/ErrorText.h"

#include <system_error>

namespace sys::platform {

std::string errorText(int number) {
    return std::generic_category().message(number);
}

}  // namespace sys::platform
