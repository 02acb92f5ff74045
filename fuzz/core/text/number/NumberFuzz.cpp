#include <climits>
#include <cstdlib>

#include "core/text/String.h"
#include "core/text/cStrings.h"
#include "core/text/parseNumber.h"
#include "fuzz/Input.h"
#include "fuzz/require.h"

namespace {

using core::String;

/// The number that the C library parses at the start of a string, if any, and where it ends.
struct Expected {
    bool parsed;
    long long value;
    int errorPosition;

    Expected(String const& text, int base) {
        char const* const start = text.getCString();
        char* end = nullptr;
        value = std::strtoll(start, &end, base);
        parsed = end != start;
        errorPosition = *end == '\0' ? -1 : static_cast<int>(end - start);
    }
};

/// Requires that the conversions of C strings clamp the value to their ranges.
void requireCStrings(char const* text, bool whole, long long value) {
    auto const narrow = static_cast<int>(std::clamp<long long>(value, INT_MIN, INT_MAX));
    auto const natural = static_cast<unsigned>(std::clamp<long long>(value, 0, UINT_MAX));
    unsigned long long const wide = value < 0 ? 0 : std::strtoull(text, nullptr, 10);
    require(core::strToInt(text) == narrow && core::strToUInt(text) == natural);
    require(core::strToInt64(text) == value && core::strToUInt64(text) == wide);
    require(core::strToIntDef(text, 7) == (whole ? narrow : 7));
    require(core::strToUIntDef(text, 7) == (whole ? natural : 7));
    require(core::strToInt64Def(text, 7) == (whole ? value : 7));
    require(core::strToUInt64Def(text, 7) == (whole ? wide : 7));
}

void requireDecimals(String const& text) {
    Expected const expected(text, 10);
    int at = -2;
    long long const wide = text.ToDecimal64(&at, 77);
    require(wide == (expected.parsed ? expected.value : 77));
    require(at == (expected.parsed ? expected.errorPosition : -2));
    int const narrow = text.ToDecimal32(&at, 77);
    require(narrow == std::clamp<long long>(wide, INT_MIN, INT_MAX));
    bool const whole = expected.parsed && expected.errorPosition == -1;
    require(whole || (!text.IsDecimal32() && !text.IsDecimal64()));
    require(!text.IsDecimal64() || text.IsInt64());
    require(!text.IsDecimal32() || (text.IsDecimal64() && narrow == wide));
    requireCStrings(text.getCString(), whole, expected.parsed ? expected.value : 0);
}

void requireBase(String const& text, int base) {
    // The C library accepts "0x" for base 16, and some versions "0b" for base 2.
    if (base != 16 && base != 2) {
        Expected const expected(text, base);
        int at = -2;
        require(text.ToCustom(base, &at, 77) == (expected.parsed ? expected.value : 77));
        require(at == (expected.parsed ? expected.errorPosition : -2));
    }
    long long const value = text.ToDecimal64();
    String const written = String::format("%1").argi(1, value, 0, base);
    bool const fits = base == 10 || value >= 0;
    require(!fits || written.ToCustom(base, 1) == value);
}

/// Checks parseWhole for value, and for hex, which digits contains in hexadecimal.
void requireWhole(String const& text, long long value, String const& digits,
                  unsigned long long hex) {
    unsigned long long read = 0;
    bool const plain = text.IsDecimal64() && text.FindDelimiter("+-") < 0;
    require(core::parseWhole(text.View(), 10, LLONG_MAX, read) == plain);
    require(!plain || read == static_cast<unsigned long long>(value));
    require(!plain || core::parseWhole(text.View(), 0, LLONG_MAX, read));
    for (char const* prefix : {"0x", "0X"}) {
        String const prefixed = prefix + digits;
        require(core::parseWhole(prefixed.View(), 0, hex, read) && read == hex);
        require(hex == 0 || !core::parseWhole(prefixed.View(), 0, hex - 1, read));
        require(!core::parseWhole(String(prefix).View(), 0, hex, read));
    }
}

void requireIntegers(String const& text) {
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
    requireWhole(text, wide, written, hex);
}

void requireZeroByDefault(String const& text) {
    require(text.ToDecimal32() == text.ToDecimal32(0) && text.ToDecimal64() == text.ToDecimal64(0));
    require(text.ToHex32() == text.ToHex32(0) && text.ToHex64() == text.ToHex64(0));
    require(text.ToInt32() == text.ToInt32(0) && text.ToInt64() == text.ToInt64(0));
    require(text.ToCustom(9) == text.ToCustom(9, 0) && text.ToBool() == text.ToBool(false));
    require(text.ToFloat() == text.ToFloat(0) || text.ToFloat() != text.ToFloat());
}

void requireFloat(String const& text) {
    double const value = text.ToFloat(-1);
    String const written = String::format("%1").argi(1, value, 0, 'g', 17);
    require(written.IsFloat());
    double const again = written.ToFloat();
    // NaN does not equal itself.
    require(again == value || (again != again && value != value));
    require(core::strToFloatDef(text.getCString(), -1) == value || value != value);
    double const front = std::strtod(text.getCString(), nullptr);
    require(core::strToFloat(text.getCString()) == front || front != front);
}

/// Requires that each entry of a list is parsed like a string of its own.
template <class Number, class ReadAll>
void requireList(char const* text, int count, ReadAll readAll,
                 Number (*readOne)(char const*, Number)) {
    Number values[9] = {};
    int const filled = readAll(text, values, count, Number{9});
    String rest(text);
    int numbers = 0;
    for (int i = 0; i < count; ++i) {
        String const entry = rest.ExtractNextToken(',').Trim();
        require(values[i] == readOne(entry.getCString(), 9));
        numbers += readOne(entry.getCString(), 9) == readOne(entry.getCString(), 8) ? 1 : 0;
    }
    require(filled == numbers && values[count] == 0);
}

}  // namespace

/// Input: a base, then a string that may be a number.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Input input(data, size);
    int const base = 2 + input.Byte() % 35;
    String const text(input.Line().c_str());
    requireDecimals(text);
    requireBase(text, base);
    requireIntegers(text);
    requireZeroByDefault(text);
    requireFloat(text);
    int const count = base % 9;
    char const* const list = text.getCString();
    requireList(
        list, count, [](auto... all) { return core::strToIntArrayDef(all...); }, core::strToIntDef);
    requireList(
        list, count, [](auto... all) { return core::strToUIntArrayDef(all...); },
        core::strToUIntDef);
    requireList(
        list, count, [](auto... all) { return core::strToInt64ArrayDef(all...); },
        core::strToInt64Def);
    return 0;
}
