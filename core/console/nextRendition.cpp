#include "core/console/nextRendition.h"

#include <algorithm>

namespace core {

namespace {

constexpr std::uint16_t initial = 0x0007;
constexpr std::uint16_t intensity = 0x0008;
constexpr std::uint16_t reverse = 0x4000;
constexpr std::uint16_t underscore = 0x8000;
constexpr std::uint16_t every = 0xFFFF;

/// The codes from first to last clear some bits and then set others.
struct Change {
    int first;
    int last;
    std::uint16_t cleared;
    std::uint16_t set;
};
// 21, which our own builder writes for "not bold", is not among them: on these screens bold text
// stays bold until 22, 2 or 0, as it always did.
constexpr Change changes[] = {
    {0, 0, every, initial},
    {1, 1, 0, intensity},
    {2, 2, intensity, 0},
    // Italics show in reverse, there being no other way to set them off.
    {3, 3, 0, reverse},
    {4, 4, 0, underscore},
    {7, 7, 0, reverse},
    // There is but one font, yet choosing one is a step like any other.
    {10, 19, 0, 0},
    {22, 22, intensity, 0},
    {23, 23, reverse, 0},
    {24, 24, underscore, 0},
    {27, 27, reverse, 0},
};

/// The codes of the foreground or the background: eight colours from base on, then the choice of
/// another colour and the default colour; the eight bright colours from bright on.
struct Ground {
    int base;
    int bright;
    int shift;
    int defaultColor;
};
constexpr Ground grounds[] = {{30, 90, 0, 7}, {40, 100, 4, 0}};

constexpr int colors = 8;
constexpr int lastColor = 15;

void setColor(std::uint16_t& attribute, Ground const& ground, int color) {
    // Of the 256 colours the screen has 16; every other one shows as bright white.
    int const index = std::clamp(color, 0, lastColor);
    // Sequences count red 1, blue 4; screens the other way round. The intensity bit belongs to the
    // colour: one of the first eight ends bold.
    int const bits = (index & 0xA) | (index & 1) << 2 | (index & 4) >> 2;
    attribute =
        static_cast<std::uint16_t>((attribute & ~(0xF << ground.shift)) | bits << ground.shift);
}

/// "5;index", or "2;r;g;b", which the screen cannot show. An empty code counts here, since the
/// others have their places.
void setOtherColor(String& codes, std::uint16_t& attribute, Ground const& ground) {
    int const kind = codes.ExtractNextToken(';').ToDecimal32(-1);
    if (kind == 5) {
        int const index = codes.ExtractNextToken(';').ToDecimal32(ground.defaultColor);
        setColor(attribute, ground, index);
    }
    for (int left = kind == 2 ? 3 : 0; left > 0; --left) {
        codes.ExtractNextToken(';');
    }
}

bool changeColor(int code, String& codes, std::uint16_t& attribute) {
    for (Ground const& ground : grounds) {
        if (code >= ground.base && code < ground.base + colors) {
            setColor(attribute, ground, code - ground.base);
        } else if (code >= ground.bright && code < ground.bright + colors) {
            setColor(attribute, ground, code - ground.bright + colors);
        } else if (code == ground.base + colors) {
            setOtherColor(codes, attribute, ground);
        } else if (code == ground.base + colors + 1) {
            setColor(attribute, ground, ground.defaultColor);
        } else {
            continue;
        }
        return true;
    }
    return false;
}

}  // namespace

bool nextRendition(String& codes, std::uint16_t& attribute) {
    while (!codes.IsEmpty()) {
        // An empty code reads as -1, which means nothing.
        int const code = codes.ExtractNextToken(';').ToDecimal32(-1);
        for (Change const& change : changes) {
            if (code >= change.first && code <= change.last) {
                attribute = static_cast<std::uint16_t>((attribute & ~change.cleared) | change.set);
                return true;
            }
        }
        if (changeColor(code, codes, attribute)) {
            return true;
        }
    }
    return false;
}

}  // namespace core
