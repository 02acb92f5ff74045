#include <climits>
#include <cstdlib>

#include "core/text/String.h"
#include "core/text/strToNumber.h"
#include "fuzz/Input.h"
#include "fuzz/require.h"

namespace {

using core::String;

/// What the C library reads at the front of a text: nothing, or the number and where it ends.
struct Expected {
    bool read;
    long long value;
    int errorPosition;

    Expected(String const& text, int base) {
        char const* const start = text.getCString();
        char* end = nullptr;
        value = std::strtoll(start, &end, base);
        read = end != start;
        errorPosition = *end == '\0' ? -1 : static_cast<int>(end - start);
    }
};

void requireDecimals(String const& text) {
    Expected const expected(text, 10);
    int at = -2;
    long long const wide = text.ToDecimal64(&at, 77);
    require(wide == (expected.read ? expected.value : 77));
    require(at == (expected.read ? expected.errorPosition : -2));
    int const narrow = text.ToDecimal32(&at, 77);
    require(narrow == std::clamp<long long>(wide, INT_MIN, INT_MAX));
    bool const whole = expected.read && expected.errorPosition == -1;
    require(whole || (!text.IsDecimal32() && !text.IsDecimal64()));
    require(!text.IsDecimal64() || text.IsInt64());
    require(!text.IsDecimal32() || (text.IsDecimal64() && narrow == wide));
    require(core::strToInt64(text.getCString()) == (expected.read ? expected.value : 0));
    require(core::strToIntDef(text.getCString(), 7) == (whole ? narrow : 7));
}

void requireOfBase(String const& text, int base) {
    // The C library takes "0x" for base 16, and some take "0b" for base 2.
    if (base != 16 && base != 2) {
        Expected const expected(text, base);
        int at = -2;
        require(text.ToCustom(base, &at, 77) == (expected.read ? expected.value : 77));
        require(at == (expected.read ? expected.errorPosition : -2));
    }
    long long const value = text.ToDecimal64();
    String const written = String::format("%1").argi(1, value, 0, base);
    bool const fits = base == 10 || value >= 0;
    require(!fits || written.ToCustom(base, 1) == value);
}

void requireInts(String const& text) {
    int at = -2;
    long long const wide = text.ToInt64(&at, 77);
    require(at >= -2 && at <= text.GetLength());
    require(at != -2 || wide == 77);
    long long const narrow = text.ToInt32();
    require(!text.IsInt32() || (text.IsInt64() && narrow == wide) || wide == LLONG_MAX ||
            wide == LLONG_MIN);
    unsigned long long const hex = text.ToHex64();
    String const written = String::format("%1").argi(1, hex, 0, 16);
    require(written.IsHex() && written.ToHex64() == hex);
    require(text.ToHex32() == std::min<unsigned long long>(hex, UINT_MAX));
}

void requireFloat(String const& text) {
    double const value = text.ToFloat(-1);
    String const written = String::format("%1").argi(1, value, 0, 'g', 17);
    require(written.IsFloat());
    double const again = written.ToFloat();
    // Two NaNs are never equal.
    require(again == value || (again != again && value != value));
    require(core::strToFloatDef(text.getCString(), -1) == value || value != value);
}

void requireList(String const& text, int count) {
    int values[8];
    int const filled = core::strToIntArrayDef(text.getCString(), values, count, -9);
    require(filled >= 0 && filled <= count);
    require(filled == count || std::find(values, values + count, -9) != values + count);
}

}  // namespace

/// A base, then a text that may be a number.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Input input(data, size);
    int const base = 2 + input.Byte() % 35;
    String const text(input.Line().c_str());
    requireDecimals(text);
    requireOfBase(text, base);
    requireInts(text);
    requireFloat(text);
    requireList(text, base % 9);
    return 0;
}
