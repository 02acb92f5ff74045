#include <gtest/gtest.h>

#include "tests/update/TestedUpdater.h"

namespace {

using update::UpdateNotification;

/// A record as it arrives, with the right CRC.
UpdateNotification arriving(std::uint32_t code, std::uint32_t value) {
    UpdateNotification onWire = update::swapped(UpdateNotification{update::wireMagic, code, value});
    onWire.crc = update::bigEndian(update::wireCrc(onWire));
    return onWire;
}

/// The errors that checking the record adds, and an empty text for a sound one.
std::string errorOf(UpdateNotification record) {
    TestedUpdater& updater = TestedUpdater::Instance();
    updater.errors.Clear();
    bool const sound = updater.AdjustAndCheckResponse(record);
    EXPECT_EQ(updater.errors.Count(), sound ? 0 : 1);
    return updater.errors.Count() > 0 ? updater.errors[0].getCString() : "";
}

// Those that are known have an example among the scenarios each.
TEST(Response, AStatusThatNobodyKnows) {
    for (std::uint32_t const status : {0u, 16u, 0xFFFFFFFFu}) {
        EXPECT_EQ(errorOf(arriving(0x80000002, status)),
                  "> Error=I really don't know what happened here");
    }
}

TEST(Response, OnlyTheTwoErrorCodesAreErrors) {
    for (std::uint32_t const code : {0u, 1u, 5u, 9u, 0x7FFFFFFFu, 0x80000000u, 0x80000003u}) {
        EXPECT_EQ(errorOf(arriving(code, 6)), "") << std::hex << code;
    }
}

TEST(Response, MagicIsLookedAtBeforeTheCrc) {
    UpdateNotification record = arriving(1, 2);
    record.crc ^= 1;
    EXPECT_EQ(errorOf(record), "Invalid CRC=The server response cannot even check itself");
    record.magic ^= 1;
    EXPECT_EQ(errorOf(record), "Invalid response=The server responded onion for garlic");

    // A device that sums its words in host order.
    record = update::swapped(UpdateNotification{update::wireMagic, 1, 2});
    record.crc = update::bigEndian(update::wireCrc(update::swapped(record)));
    EXPECT_EQ(errorOf(record), "Invalid CRC=The server response cannot even check itself");
}

}  // namespace
