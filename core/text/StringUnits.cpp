#include <algorithm>

#include "core/text/Buffer.h"
#include "core/text/String.h"

namespace core {

namespace {

template <class Unit>
void setUnits(String& text, Unit const* units, int length) {
    text.Clear();
    if (units == nullptr) {
        return;
    }
    int const limit = length < 0 ? String::MaxLength : std::min(length, String::MaxLength);
    int count = 0;
    while (count < limit && (units[count] & 0xFF) != 0) {
        ++count;
    }
    char* const buffer = text.GetBuffer(count);
    std::transform(units, units + count, buffer, String::FromLongChar);
}

template <class Unit>
int getUnits(String const& text, Unit* out, int size) {
    if (out == nullptr || size < 1) {
        return 0;
    }
    std::string_view const part = text.View().substr(0, static_cast<std::size_t>(size) - 1);
    *std::transform(part.begin(), part.end(), out,
                    [](char c) { return static_cast<Unit>(String::ToAnsiChar(c)); }) = 0;
    return static_cast<int>(part.size());
}

template <class Unit>
Buffer unitBuffer(String const& text) {
    int const length = text.GetLength();
    std::vector<Unit> units(static_cast<std::size_t>(length) + 1);
    getUnits(text, units.data(), length + 1);
    return Buffer(units.data(), length * static_cast<int>(sizeof(Unit)));
}

}  // namespace

void String::SetString(unsigned short const* units, int length) {
    setUnits(*this, units, length);
}

void String::SetString(unsigned int const* units, int length) {
    setUnits(*this, units, length);
}

int String::GetString(char* out, int size) const {
    return getUnits(*this, out, size);
}

int String::GetString(unsigned short* out, int size) const {
    return getUnits(*this, out, size);
}

int String::GetString(unsigned int* out, int size) const {
    return getUnits(*this, out, size);
}

Buffer String::GetRawBuffer() const {
    return Buffer(getCString(), GetLength());
}

Buffer String::GetAnsiBuffer() const {
    return GetRawBuffer();
}

Buffer String::GetUnicode16Buffer() const {
    return unitBuffer<unsigned short>(*this);
}

Buffer String::GetUnicode32Buffer() const {
    return unitBuffer<unsigned int>(*this);
}

}  // namespace core
