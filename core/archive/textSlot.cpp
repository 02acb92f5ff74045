#include "core/archive/textSlot.h"

#include <cstdint>
#include <string>

#include "core/archive/littleEndian.h"
#include "core/text/unicode.h"

namespace core::archive {

namespace {

constexpr char32_t firstHigh = 0xD800;
constexpr char32_t firstLow = 0xDC00;
constexpr char32_t lastLow = 0xDFFF;
constexpr char32_t beyondOneUnit = 0x10000;

bool isHigh(char32_t unit) {
    return unit >= firstHigh && unit < firstLow;
}

bool isLow(char32_t unit) {
    return unit >= firstLow && unit <= lastLow;
}

char32_t unitAt(unsigned char const* slot, std::size_t index) {
    return getWord<std::uint16_t>(slot + 2 * index);
}

/// Appends a character as one unit or as a pair.
void appendUnits(char32_t point, std::u16string& units) {
    if (point >= beyondOneUnit) {
        point -= beyondOneUnit;
        units.push_back(static_cast<char16_t>(firstHigh + (point >> 10)));
        point = firstLow + (point & 0x3FF);
    }
    units.push_back(static_cast<char16_t>(point));
}

}  // namespace

String readTextSlot(unsigned char const* slot, int units) {
    auto const room = static_cast<std::size_t>(units);
    TextBuilder text;
    for (std::size_t i = 0; i < room && unitAt(slot, i) != 0; ++i) {
        char32_t point = unitAt(slot, i);
        if (isHigh(point) && i + 1 < room && isLow(unitAt(slot, i + 1))) {
            ++i;
            point = beyondOneUnit + ((point - firstHigh) << 10) + (unitAt(slot, i) - firstLow);
        } else if (isHigh(point) || isLow(point)) {
            point = unicode::replacement;
        }
        unicode::appendCodePoint(point, text);
    }
    return text.AsString();
}

SlotResult writeTextSlot(String const& text, unsigned char* slot, int units) {
    auto const room = static_cast<std::size_t>(units);
    std::u16string encoded;
    for (std::string_view rest = text.View(); !rest.empty();) {
        char32_t point = 0;
        if (!unicode::decodeCodePoint(rest, point)) {
            return SlotResult::notUtf8;
        }
        appendUnits(point, encoded);
        if (encoded.size() > room) {
            return SlotResult::tooLong;
        }
    }
    encoded.resize(room);
    for (std::size_t i = 0; i < room; ++i) {
        putWord(static_cast<std::uint16_t>(encoded[i]), slot + 2 * i);
    }
    return SlotResult::written;
}

}  // namespace core::archive
