#include "core/archive/archiveFormat.h"

#include <cstddef>
#include <cstring>

#include "core/text/unicode.h"

namespace core::archive {

namespace {

constexpr char32_t firstHigh = 0xD800;
constexpr char32_t firstLow = 0xDC00;
constexpr char32_t lastLow = 0xDFFF;
constexpr char32_t beyondOneUnit = 0x10000;

bool isHighSurrogate(char32_t unit) {
    return unit >= firstHigh && unit < firstLow;
}

bool isLowSurrogate(char32_t unit) {
    return unit >= firstLow && unit <= lastLow;
}

char32_t unitAt(unsigned char const* slot, std::size_t index) {
    return getWord<std::uint16_t>(slot + 2 * index);
}

/// Stores a code point as one unit or as a surrogate pair. Returns the number of units, which is 0
/// if units are too few.
int putCodePoint(char32_t point, unsigned char* slot, int units) {
    int const needed = point < beyondOneUnit ? 1 : 2;
    if (needed > units) {
        return 0;
    }
    if (needed == 2) {
        point -= beyondOneUnit;
        putWord(static_cast<std::uint16_t>(firstHigh + (point >> 10)), slot);
        slot += 2;
        point = firstLow + (point & 0x3FF);
    }
    putWord(static_cast<std::uint16_t>(point), slot);
    return needed;
}

}  // namespace

String readTextSlot(unsigned char const* slot, int units) {
    auto const count = static_cast<std::size_t>(units);
    TextBuilder text;
    for (std::size_t i = 0; i < count && unitAt(slot, i) != 0; ++i) {
        char32_t point = unitAt(slot, i);
        if (isHighSurrogate(point) && i + 1 < count && isLowSurrogate(unitAt(slot, i + 1))) {
            ++i;
            point = beyondOneUnit + ((point - firstHigh) << 10) + (unitAt(slot, i) - firstLow);
        } else if (isHighSurrogate(point) || isLowSurrogate(point)) {
            point = unicode::replacement;
        }
        unicode::appendCodePoint(point, text);
    }
    return text.AsString();
}

SlotResult writeTextSlot(String const& text, unsigned char* slot, int units) {
    std::memset(slot, 0, 2 * static_cast<std::size_t>(units));
    for (std::string_view rest = text.View(); !rest.empty();) {
        char32_t point = 0;
        if (!unicode::decodeCodePoint(rest, point)) {
            return SlotResult::notUtf8;
        }
        int const stored = putCodePoint(point, slot, units);
        if (stored == 0) {
            return SlotResult::tooLong;
        }
        slot += std::ptrdiff_t{2} * stored;
        units -= stored;
    }
    return SlotResult::written;
}

}  // namespace core::archive
