#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <vector>

#include "core/crc/crc16.h"
#include "core/crc/crc32.h"
#include "core/crc/crc32Ways.h"
#include "tests/support/bitwiseCrc32.h"

namespace {

namespace crc32 = core::crc32;

TEST(Crc32, ReturnsKnownValues) {
    EXPECT_EQ(core::crc::init(), 0);
    EXPECT_EQ(core::crc::init(), 0);
    unsigned int start = 1;
    crc32::Start(start);
    EXPECT_EQ(crc32::update("123456789", 9, start), 0xCBF43926u);
    EXPECT_EQ(crc32::update("123456789", 0, 0x1234u), 0x1234u);
    EXPECT_EQ(crc32::update(nullptr, -1, 0x1234u), 0x1234u);

    unsigned char const bytes[] = {1, 2, 3, 4};
    unsigned int const expected = crc32::update(bytes, 4, 7);
    EXPECT_EQ(crc32::updatele(0x04030201, 7), expected);
    EXPECT_EQ(crc32::updatebe(0x01020304, 7), expected);
}

TEST(Crc32, AgreesWithTheDefinitionForEveryWayLengthAlignmentAndSplit) {
    std::mt19937 random(3007);
    std::vector<unsigned char> data(3000);
    std::generate(data.begin(), data.end(), std::ref(random));
    for (int length = 0; length < 2000; length = length < 200 ? length + 1 : length + 131) {
        for (int offset = 0; offset < 16; ++offset) {
            auto const* const bytes = data.data() + offset;
            auto const size = static_cast<std::size_t>(length);
            auto const expected = bitwiseCrc32(bytes, size);
            for (crc32::Way const& way : crc32::supportedWays()) {
                ASSERT_EQ(~way.update(bytes, size, ~0U), expected)
                    << way.name << ", " << length << " at " << offset;
            }
            auto const head = static_cast<int>(random() % (size + 1));
            ASSERT_EQ(crc32::update(bytes + head, length - head, crc32::update(bytes, head, 0)),
                      expected)
                << length << " at " << offset << ", split at " << head;
        }
    }
}

TEST(RunningCrcs, AcceptTextsBuffersBytesAndWords) {
    unsigned const whole = crc32::update("1234567\x01\x02\x03\x04\x04\x03\x02\x01", 15, 0);
    core::Crc32 crc32(7);
    crc32.Restart();
    crc32.Update(core::String("123"));
    crc32.Update(core::Buffer("456", 3));
    crc32.Update(core::Buffer());
    crc32.Update(static_cast<unsigned char>('7'));
    crc32.Update(0x04030201u);
    crc32.UpdateInvertByteOrder(0x04030201u);
    EXPECT_EQ(crc32.Get(), whole);

    EXPECT_EQ(core::crc16::xmodem_update(nullptr, -1, 0x1234), 0x1234);
    unsigned short start = 1;
    core::crc16::Start(start);
    core::Crc16 crc16(start);
    crc16.Update(core::String("123"));
    crc16.Update(core::Buffer("456", 3));
    crc16.Update("78", 2);
    crc16.Update(static_cast<unsigned char>('9'));
    EXPECT_EQ(crc16.Get(), 0x31C3);
    crc16.Restart();
    EXPECT_EQ(crc16.Get(), 0);
}

}  // namespace
