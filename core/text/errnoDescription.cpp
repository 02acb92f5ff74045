#include "core/text/errnoDescription.h"

#include <string>
#include <system_error>

#include "sys/platform/ErrorText.h"

namespace core {

namespace {

constexpr int longest = 2048;

}  // namespace

String errnoDescription(int number) {
    return String(sys::platform::errorText(number).c_str(), longest);
}

String cLibraryErrorText(int number) {
    return String(std::generic_category().message(number).c_str(), longest);
}

}  // namespace core
