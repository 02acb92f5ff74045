#include <gtest/gtest.h>

#include <array>
#include <bit>

#include "update/protocol/UpdateNotification.h"
#include "update/protocol/UpdateRequest.h"
#include "update/protocol/UpdateTransferHeader.h"
#include "update/protocol/UpdateTransferTrailer.h"

namespace {

using namespace update;
using Bytes = std::array<unsigned char, recordSize>;

template <class Record>
Bytes onWire(Record const& record) {
    return std::bit_cast<Bytes>(swapped(record));
}

// Updater and device share these records, and so would share a fault in them: the bytes are pinned.
TEST(Records, BytesOnTheWire) {
    UpdateRequest request;
    request.fileSize = 1000;
    request.fileCrc = 0x11223344;
    EXPECT_EQ(onWire(request), (Bytes{0xE8, 0xB4, 0x7C, 0xC3, 0x00, 0x00, 0x03, 0xE8, 0x11, 0x22,
                                      0x33, 0x44, 0x17, 0x4B, 0x83, 0x3C}));

    UpdateTransferHeader header;
    header.acceptToken = 5;
    header.fileSize = 1000;
    EXPECT_EQ(onWire(header), (Bytes{0xE8, 0xB4, 0x7C, 0xC3, 0x00, 0x00, 0x00, 0x05, 0x00, 0x01,
                                     0x00, 0x00, 0x00, 0x00, 0x03, 0xE8}));

    UpdateTransferTrailer trailer;
    trailer.fileSize = 1000;
    trailer.fileCrc = 0x11223344;
    trailer.acceptToken = 5;
    EXPECT_EQ(onWire(trailer), (Bytes{0x00, 0x00, 0x03, 0xE8, 0x11, 0x22, 0x33, 0x44, 0x00, 0x00,
                                      0x00, 0x05, 0xE8, 0xB4, 0x7C, 0xC3}));
}

TEST(Records, NotificationCrcCoversTheBytesAsTheyTravel) {
    // E8B47CC3 00000005 00000001, its CRC by another implementation
    Bytes const bytes{0xE8, 0xB4, 0x7C, 0xC3, 0x00, 0x00, 0x00, 0x05,
                      0x00, 0x00, 0x00, 0x01, 0x08, 0xC6, 0x5B, 0x05};
    auto const received = std::bit_cast<UpdateNotification>(bytes);
    UpdateNotification const record = swapped(received);
    EXPECT_EQ(record.code, UpdateNotification::Complete);
    EXPECT_EQ(record.value, UpdateNotification::FirmwareRestart);
    EXPECT_EQ(record.crc, wireCrc(received));
}

}  // namespace
