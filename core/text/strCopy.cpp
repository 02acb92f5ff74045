#include "core/text/strCopy.h"

#include <cstring>

namespace core {

char* _strNCpy(char* target, char const* source, int size) {
    _strCopyLimited(target, size, source);
    return target;
}

int _strCopyLimited(char* target, int size, char const* source) {
    if (target == nullptr || size < 1) {
        return 0;
    }
    int length = 0;
    // The source may be longer than anything that fits: it is not measured first.
    for (; source != nullptr && length < size - 1 && source[length] != '\0'; ++length) {
        target[length] = source[length];
    }
    target[length] = '\0';
    return length;
}

int _strConcatLimited(char* target, int size, char const* source) {
    if (target == nullptr || size < 1) {
        return 0;
    }
    auto const* const end =
        static_cast<char*>(std::memchr(target, '\0', static_cast<std::size_t>(size)));
    int const used = end != nullptr ? static_cast<int>(end - target) : size - 1;
    return _strCopyLimited(target + used, size - used, source);
}

char const* _strChr(char const* text, char c) {
    return text != nullptr && c != '\0' ? std::strchr(text, c) : nullptr;
}

}  // namespace core
