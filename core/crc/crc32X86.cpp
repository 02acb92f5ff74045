#include <cpuid.h>
#include <immintrin.h>

#include "core/crc/crc32Ways.h"

// A CRC is the remainder of the data, as a polynomial over GF(2), modulo a polynomial P of degree
// 32. Folding replaces 128 bits of data that are n bits before the end by their product with
// x^n mod P, which has the same remainder. Four 128-bit lanes fold blocks of 64 bytes, until 16
// bytes are left for the tables. With 512-bit registers, 16 lanes first fold blocks of 256 bytes,
// which is three times as fast.

namespace core::crc32 {

namespace {

std::size_t const narrowBlockSize = 64;
std::size_t const wideBlockSize = 256;

/// Returns x^n mod P in the bit order for multiplying reflected data: bit 32 - i is the coefficient
/// of x^i.
constexpr long long power(int n) {
    std::uint32_t remainder = 1;
    for (int i = 0; i < n; ++i) {
        remainder = (remainder << 1) ^ ((remainder >> 31) != 0 ? 0x04C11DB7u : 0u);
    }
    std::uint64_t reflected = 0;
    for (int bit = 0; bit < 32; ++bit) {
        reflected |= static_cast<std::uint64_t>(remainder >> bit & 1) << (32 - bit);
    }
    return static_cast<long long>(reflected);
}

// The two halves of 128 bits are 64 bits apart, and the product of two reflected numbers is shifted
// by one bit: hence 32 more for the lower half and 32 less for the upper half.
constexpr long long by512Low = power(512 + 32);
constexpr long long by512High = power(512 - 32);
constexpr long long by128Low = power(128 + 32);
constexpr long long by128High = power(128 - 32);
constexpr long long by2048Low = power(2048 + 32);
constexpr long long by2048High = power(2048 - 32);
static_assert(by512Low == 0x154442BD4 && by512High == 0x1C6E41596);
static_assert(by128Low == 0x1751997D0 && by128High == 0x0CCAA009E);

// The three-operand encoding of "avx" avoids register copies that would halve the speed.

[[gnu::target("avx,pclmul"), gnu::always_inline]] inline __m128i load(unsigned char const* bytes) {
    return _mm_loadu_si128(reinterpret_cast<__m128i const*>(bytes));
}

/// Returns lane multiplied by the powers, added to data at the new position.
[[gnu::target("avx,pclmul"), gnu::always_inline]] inline __m128i fold(__m128i lane, __m128i powers,
                                                                      __m128i data) {
    __m128i const low = _mm_clmulepi64_si128(lane, powers, 0x00);
    __m128i const high = _mm_clmulepi64_si128(lane, powers, 0x11);
    return _mm_xor_si128(_mm_xor_si128(low, high), data);
}

/// Folds blocks of 64 bytes in four lanes.
[[gnu::target("avx,pclmul")]] std::uint32_t foldNarrow(unsigned char const* bytes,
                                                       std::size_t blocks, std::uint32_t c) {
    __m128i const by512 = _mm_set_epi64x(by512High, by512Low);
    __m128i const by128 = _mm_set_epi64x(by128High, by128Low);
    __m128i lane0 = _mm_xor_si128(load(bytes), _mm_cvtsi32_si128(static_cast<int>(c)));
    __m128i lane1 = load(bytes + 16);
    __m128i lane2 = load(bytes + 32);
    __m128i lane3 = load(bytes + 48);
    for (std::size_t block = 1; block < blocks; ++block) {
        bytes += narrowBlockSize;
        lane0 = fold(lane0, by512, load(bytes));
        lane1 = fold(lane1, by512, load(bytes + 16));
        lane2 = fold(lane2, by512, load(bytes + 32));
        lane3 = fold(lane3, by512, load(bytes + 48));
    }
    lane1 = fold(lane0, by128, lane1);
    lane2 = fold(lane1, by128, lane2);
    lane3 = fold(lane2, by128, lane3);
    alignas(16) unsigned char rest[16];
    _mm_store_si128(reinterpret_cast<__m128i*>(rest), lane3);
    return updateWithTables(rest, sizeof rest, 0);
}

/// The same for the four lanes of a 512-bit register.
[[gnu::target("avx512f,vpclmulqdq"), gnu::always_inline]] inline __m512i fold(__m512i lanes,
                                                                              __m512i powers,
                                                                              __m512i data) {
    __m512i const low = _mm512_clmulepi64_epi128(lanes, powers, 0x00);
    __m512i const high = _mm512_clmulepi64_epi128(lanes, powers, 0x11);
    int const exclusiveOrOfAll = 0x96;
    return _mm512_ternarylogic_epi64(low, high, data, exclusiveOrOfAll);
}

/// Folds blocks of 256 bytes in 16 lanes.
[[gnu::target("avx512f,vpclmulqdq")]] std::uint32_t foldWide(unsigned char const* bytes,
                                                             std::size_t blocks, std::uint32_t c) {
    __m512i const by2048 = _mm512_set4_epi64(by2048High, by2048Low, by2048High, by2048Low);
    __m512i lanes[4];
    for (std::size_t i = 0; i < 4; ++i) {
        lanes[i] = _mm512_loadu_si512(bytes + 64 * i);
    }
    __m512i const start = _mm512_set4_epi32(0, 0, 0, static_cast<int>(c));
    __mmask8 const firstLane = 0x3;
    lanes[0] = _mm512_mask_xor_epi64(lanes[0], firstLane, lanes[0], start);
    for (std::size_t block = 1; block < blocks; ++block) {
        bytes += wideBlockSize;
        for (std::size_t i = 0; i < 4; ++i) {
            lanes[i] = fold(lanes[i], by2048, _mm512_loadu_si512(bytes + 64 * i));
        }
    }
    unsigned char rest[wideBlockSize];
    for (std::size_t i = 0; i < 4; ++i) {
        _mm512_storeu_si512(rest + 64 * i, lanes[i]);
    }
    return foldNarrow(rest, wideBlockSize / narrowBlockSize, 0);
}

std::uint32_t updateNarrow(unsigned char const* bytes, std::size_t size, std::uint32_t c) {
    if (std::size_t const blocks = size / narrowBlockSize; blocks > 0) {
        c = foldNarrow(bytes, blocks, c);
        bytes += blocks * narrowBlockSize;
        size %= narrowBlockSize;
    }
    return updateWithTables(bytes, size, c);
}

std::uint32_t updateWide(unsigned char const* bytes, std::size_t size, std::uint32_t c) {
    if (std::size_t const blocks = size / wideBlockSize; blocks > 0) {
        c = foldWide(bytes, blocks, c);
        bytes += blocks * wideBlockSize;
        size %= wideBlockSize;
    }
    return updateNarrow(bytes, size, c);
}

// A CPU that supports a way also supports the later ones.
constexpr Way ways[] = {{"512-bit folding", updateWide},
                        {"128-bit folding", updateNarrow},
                        {"tables", updateWithTables}};
constexpr std::size_t wide = 0;
constexpr std::size_t narrow = 1;
constexpr std::size_t tables = 2;

/// Returns the index of the first way that both the CPU and the operating system support.
[[gnu::target("xsave")]] std::size_t detectFirstWay() {
    unsigned int a = 0;
    unsigned int b = 0;
    unsigned int c = 0;
    unsigned int d = 0;
    unsigned const needed = bit_PCLMUL | bit_AVX | bit_OSXSAVE;
    if (__get_cpuid(1, &a, &b, &c, &d) == 0 || (c & needed) != needed) {
        return tables;
    }
    // Registers that the OS saves on a context switch (XCR0).
    unsigned long long const saved = _xgetbv(0);
    unsigned long long const registersOf128And256 = 0x06;
    unsigned long long const registersOf512 = 0xE6;
    if ((saved & registersOf128And256) != registersOf128And256) {
        return tables;
    }
    bool const isWide = (saved & registersOf512) == registersOf512 &&
                        __get_cpuid_count(7, 0, &a, &b, &c, &d) != 0 && (b & bit_AVX512F) != 0 &&
                        (c & bit_VPCLMULQDQ) != 0;
    return isWide ? wide : narrow;
}

}  // namespace

std::span<Way const> supportedWays() {
    // Without __builtin_cpu_supports: that detects all features before main, which on a virtual
    // machine costs 5 % of a program's start.
    static std::size_t const first = detectFirstWay();
    return std::span(ways).subspan(first);
}

}  // namespace core::crc32
