#include "core/archive/textSlot.h"

#include <cstdint>

#include "core/archive/littleEndian.h"
#include "core/archive/unicode.h"

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

char32_t unitAt(unsigned char const* slot, int index) {
    return getWord<std::uint16_t>(slot + 2 * index);
}

}  // namespace

String readTextSlot(unsigned char const* slot, int units) {
    std::string text;
    for (int i = 0; i < units && unitAt(slot, i) != 0; ++i) {
        char32_t point = unitAt(slot, i);
        if (isHigh(point) && i + 1 < units && isLow(unitAt(slot, i + 1))) {
            ++i;
            point = beyondOneUnit + ((point - firstHigh) << 10) + (unitAt(slot, i) - firstLow);
        } else if (isHigh(point) || isLow(point)) {
            point = unicode::replacement;
        }
        unicode::appendPoint(point, text);
    }
    return String(std::string_view(text));
}

SlotResult writeTextSlot(String const& text, unsigned char* slot, int units) {
    int used = 0;
    for (std::string_view rest = text.View(); !rest.empty();) {
        char32_t point = 0;
        if (!unicode::takePoint(rest, point)) {
            return SlotResult::notUtf8;
        }
        bool const pair = point >= beyondOneUnit;
        if (used + (pair ? 2 : 1) > units) {
            return SlotResult::tooLong;
        }
        if (pair) {
            point -= beyondOneUnit;
            putWord(static_cast<std::uint16_t>(firstHigh + (point >> 10)), slot + 2 * used++);
            point = firstLow + (point & 0x3FF);
        }
        putWord(static_cast<std::uint16_t>(point), slot + 2 * used++);
    }
    std::memset(slot + 2 * used, 0, static_cast<std::size_t>(2 * (units - used)));
    return SlotResult::written;
}

}  // namespace core::archive
