#include <immintrin.h>

#include "core/crc/crc32Folding.h"
#include "core/crc/crc32Tables.h"

// A CRC is the remainder of the data, read as a polynomial over GF(2), by a fixed one of degree 32.
// 128 bits of data that stand n bits before the end may be replaced by their product with
// x^n mod P, which is what folding does: four lanes walk over the data 64 bytes at a time, until
// 16 bytes with the same remainder are left for the tables.

namespace core::crc32 {

namespace {

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

}  // namespace

bool canFold() {
    static bool const can = __builtin_cpu_supports("pclmul") && __builtin_cpu_supports("avx");
    return can;
}

[[gnu::target("avx,pclmul")]] std::uint32_t updateByFolding(unsigned char const* bytes,
                                                            std::size_t blocks, std::uint32_t c) {
    __m128i const by512 = _mm_set_epi64x(by512High, by512Low);
    __m128i const by128 = _mm_set_epi64x(by128High, by128Low);
    __m128i lane0 = _mm_xor_si128(load(bytes), _mm_cvtsi32_si128(static_cast<int>(c)));
    __m128i lane1 = load(bytes + 16);
    __m128i lane2 = load(bytes + 32);
    __m128i lane3 = load(bytes + 48);
    for (std::size_t block = 1; block < blocks; ++block) {
        bytes += foldedBlock;
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

}  // namespace core::crc32
