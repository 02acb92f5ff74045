#include "sys/platform/ErrorText.h"

#include <windows.h>

#include <system_error>

namespace sys::platform {

std::string errorText(int number) {
    char text[2048];
    DWORD const length =
        FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                       static_cast<DWORD>(number), 0, text, sizeof text, nullptr);
    std::string const message(text, length);
    return length > 0 ? message.substr(0, message.find_last_not_of("\r\n") + 1)
                      : std::generic_category().message(number);
}

}  // namespace sys::platform
