#include <algorithm>

#include "core/text/Buffer.h"
#include "core/text/String.h"

namespace core {

template <class Unit>
void String::SetUnits(Unit const* units, int length) {
    Clear();
    if (units == nullptr) {
        return;
    }
    int const limit = length < 0 ? MaxLength : std::min(length, MaxLength);
    int count = 0;
    while (count < limit && (units[count] & 0xFF) != 0) {
        ++count;
    }
    char* const text = GetBuffer(count);
    for (int i = 0; i < count; ++i) {
        text[i] = FromLongChar(units[i]);
    }
}

template <class Unit>
int String::GetUnits(Unit* out, int size) const {
    if (out == nullptr || size < 1) {
        return 0;
    }
    std::string_view const text = View().substr(0, static_cast<std::size_t>(size) - 1);
    *std::transform(text.begin(), text.end(), out,
                    [](char c) { return static_cast<Unit>(ToAnsiChar(c)); }) = 0;
    return static_cast<int>(text.size());
}

template <class Unit>
Buffer String::GetUnitBuffer() const {
    int const length = GetLength();
    std::vector<Unit> units(static_cast<std::size_t>(length) + 1);
    GetUnits(units.data(), length + 1);
    return Buffer(units.data(), length * static_cast<int>(sizeof(Unit)));
}

void String::SetString(unsigned short const* units, int length) {
    SetUnits(units, length);
}

void String::SetString(unsigned int const* units, int length) {
    SetUnits(units, length);
}

int String::GetString(char* out, int size) const {
    return GetUnits(out, size);
}

int String::GetString(unsigned short* out, int size) const {
    return GetUnits(out, size);
}

int String::GetString(unsigned int* out, int size) const {
    return GetUnits(out, size);
}

Buffer String::GetRawBuffer() const {
    return Buffer(getCString(), GetLength());
}

Buffer String::GetAnsiBuffer() const {
    return GetRawBuffer();
}

Buffer String::GetUnicode16Buffer() const {
    return GetUnitBuffer<unsigned short>();
}

Buffer String::GetUnicode32Buffer() const {
    return GetUnitBuffer<unsigned int>();
}

}  // namespace core
