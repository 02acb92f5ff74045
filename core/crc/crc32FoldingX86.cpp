#include <cpuid.h>
#include <immintrin.h>

#include "core/crc/crc32Ways.h"

// A CRC is the remainder of the data, read as a polynomial over GF(2), by a fixed one of degree 32.
// 128 bits of data that stand n bits before the end may be replaced by their product with
// x^n mod P, which is what folding does: four lanes walk over the data 64 bytes at a time, until
// 16 bytes with the same remainder are left for the tables. Where a register takes four lanes, 16
// of them walk first, which is three times as fast.

namespace core::crc32 {

namespace {

std::size_t const wideBlock = 256;

/// x^n mod P in the reflected order that the multiplication of reflected data needs: bit 32 - i
/// is the coefficient of x^i.
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

// The two halves of 128 bits are 64 bits apart, and the product of two reflected numbers is one
// bit short: hence 32 more for the lower half and 32 less for the upper one.
constexpr long long by512Low = power(512 + 32);
constexpr long long by512High = power(512 - 32);
constexpr long long by128Low = power(128 + 32);
constexpr long long by128High = power(128 - 32);
constexpr long long by2048Low = power(2048 + 32);
constexpr long long by2048High = power(2048 - 32);
static_assert(by512Low == 0x154442BD4 && by512High == 0x1C6E41596);
static_assert(by128Low == 0x1751997D0 && by128High == 0x0CCAA009E);

// The wider encoding of "avx" saves the register copies that would halve the speed.

[[gnu::target("avx,pclmul"), gnu::always_inline]] inline __m128i load(unsigned char const* bytes) {
    return _mm_loadu_si128(reinterpret_cast<__m128i const*>(bytes));
}

/// The lane moved forward by the powers, with what stands there.
[[gnu::target("avx,pclmul"), gnu::always_inline]] inline __m128i fold(__m128i lane, __m128i powers,
                                                                      __m128i there) {
    __m128i const low = _mm_clmulepi64_si128(lane, powers, 0x00);
    __m128i const high = _mm_clmulepi64_si128(lane, powers, 0x11);
    return _mm_xor_si128(_mm_xor_si128(low, high), there);
}

[[gnu::target("avx,pclmul")]] std::uint32_t foldNarrow(unsigned char const* bytes,
                                                       std::size_t blocks, std::uint32_t c) {
    __m128i const by512 = _mm_set_epi64x(by512High, by512Low);
    __m128i const by128 = _mm_set_epi64x(by128High, by128Low);
    __m128i lane0 = _mm_xor_si128(load(bytes), _mm_cvtsi32_si128(static_cast<int>(c)));
    __m128i lane1 = load(bytes + 16);
    __m128i lane2 = load(bytes + 32);
    __m128i lane3 = load(bytes + 48);
    for (std::size_t block = 1; block < blocks; ++block) {
        bytes += foldBlockSize;
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

/// Four lanes at once.
[[gnu::target("avx512f,vpclmulqdq"), gnu::always_inline]] inline __m512i fold(__m512i lanes,
                                                                              __m512i powers,
                                                                              __m512i there) {
    __m512i const low = _mm512_clmulepi64_epi128(lanes, powers, 0x00);
    __m512i const high = _mm512_clmulepi64_epi128(lanes, powers, 0x11);
    int const exclusiveOrOfAll = 0x96;
    return _mm512_ternarylogic_epi64(low, high, there, exclusiveOrOfAll);
}

/// The same for blocks of 256 bytes, 16 lanes at once.
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
        bytes += wideBlock;
        for (std::size_t i = 0; i < 4; ++i) {
            lanes[i] = fold(lanes[i], by2048, _mm512_loadu_si512(bytes + 64 * i));
        }
    }
    unsigned char rest[wideBlock];
    for (std::size_t i = 0; i < 4; ++i) {
        _mm512_storeu_si512(rest + 64 * i, lanes[i]);
    }
    return foldNarrow(rest, wideBlock / foldBlockSize, 0);
}

struct Abilities {
    bool narrow = false;
    bool wide = false;
};

/// What the processor can do and the system lets it.
[[gnu::target("xsave")]] Abilities ask() {
    unsigned int a = 0;
    unsigned int b = 0;
    unsigned int c = 0;
    unsigned int d = 0;
    unsigned const needed = bit_PCLMUL | bit_AVX | bit_OSXSAVE;
    if (__get_cpuid(1, &a, &b, &c, &d) == 0 || (c & needed) != needed) {
        return {};
    }
    // Which registers the system keeps when it turns to another program.
    unsigned long long const kept = _xgetbv(0);
    unsigned long long const registersOf128And256 = 0x06;
    unsigned long long const registersOf512 = 0xE6;
    Abilities abilities;
    abilities.narrow = (kept & registersOf128And256) == registersOf128And256;
    abilities.wide = abilities.narrow && (kept & registersOf512) == registersOf512 &&
                     __get_cpuid_count(7, 0, &a, &b, &c, &d) != 0 && (b & bit_AVX512F) != 0 &&
                     (c & bit_VPCLMULQDQ) != 0;
    return abilities;
}

/// Asked at the first checksum, and not by the compiler's own means: these ask everything, in every
/// program that could need it, before main. On a virtual machine that is a twentieth of a start.
Abilities const& abilities() {
    static Abilities const found = ask();
    return found;
}

}  // namespace

bool canFold() {
    return abilities().narrow;
}

std::uint32_t updateByFolding(unsigned char const* bytes, std::size_t blocks, std::uint32_t c) {
    std::size_t const perWide = wideBlock / foldBlockSize;
    if (blocks >= perWide && abilities().wide) {
        std::size_t const wide = blocks / perWide;
        c = foldWide(bytes, wide, c);
        bytes += wide * wideBlock;
        blocks %= perWide;
    }
    return blocks > 0 ? foldNarrow(bytes, blocks, c) : c;
}

}  // namespace core::crc32
