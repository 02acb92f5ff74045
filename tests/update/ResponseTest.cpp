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

TEST(Response, EveryStatusHasItsWords) {
    std::string const acknowledge = "=Error sending the acknowledge data";
    std::string const unknown = "> Error=I really don't know what happened here";
    struct Row {
        std::uint32_t status;
        std::string error;
    } const rows[] = {
        {0, unknown},
        {1, "> Invalid magic number" + acknowledge},
        {2, "> Invalid CRC" + acknowledge},
        {3, "> Invalid data size" + acknowledge},
        {4, "> Invalid ~magic number" + acknowledge},
        {5, "> Invalid data size (too big)" + acknowledge},
        {6, "> System is busy=The system is now busy and the update procedure must be postponed"},
        {7, "> Invalid password" + acknowledge},
        {8, "> Invalid version" + acknowledge},
        {9, "> Timeout=Maybe I am too lazy"},
        {10, "> Unable to exchange information=This should not happen"},
        {11, "> Read/write error=The system received an I/O error"},
        {12, "> Wrong file CRC=Please do your math"},
        {13, "> Interrupted=The update procedure was interrupted"},
        {14, "> Ghost error=Please call the Ghostbusters!"},
        {15, "> Invalid target=This update is not applicable to this device"},
        {16, unknown},
        {0xFFFFFFFF, unknown},
    };
    for (Row const& row : rows) {
        EXPECT_EQ(errorOf(arriving(0x80000001, row.status)), row.error);
        EXPECT_EQ(errorOf(arriving(0x80000002, row.status)), row.error);
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
