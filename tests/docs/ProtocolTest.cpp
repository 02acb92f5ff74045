#include "tests/device/ScenarioDevice.h"
#include "tests/docs/document.h"
#include "tests/update/TestedUpdater.h"

namespace {

using support::numbersOf;
using support::sourceText;

std::string const document = sourceText("docs/protocol.md");

std::string example(std::string const& kind) {
    return support::bytesOf(support::blocksOf(document, "hexdump " + kind));
}

// Updater and simulated device share the records, and so would share a fault in them: the document
// pins their bytes.
TEST(Protocol, ItsExamplesAreWhatTravels) {
    support::TemporaryFolder const folder;
    std::string const path = folder.Write("update.rvl", "123456789");
    TestedUpdater::Instance().UseProductLimits();
    ScenarioDevice honest;
    TestedUpdater::Instance().RunSession(path, honest.Address());
    EXPECT_EQ(honest.End(), std::vector{device::Outcome::complete});
    EXPECT_EQ(honest.Received(), example("updater"));
    EXPECT_EQ(honest.Sent(), example("device"));
    ScenarioDevice busy("request = notify Error:SystemBusy");
    TestedUpdater::Instance().RunSession(path, busy.Address());
    EXPECT_EQ(busy.End(), std::vector{device::Outcome::refused});
    EXPECT_EQ(busy.Sent(), example("refusal"));
}

TEST(Protocol, ItsNumbersAreThoseOfTheUpdaterAndTheDissector) {
    std::string const dissector = sourceText("examples/wireshark/ravelink.lua");
    auto const compare = [&](char const* header, char const* type, char const* section,
                             char const* table) {
        auto const numbers = numbersOf(sourceText(header), type, "};");
        EXPECT_EQ(numbersOf(document, section, "\n#"), numbers);
        EXPECT_EQ(numbersOf(dissector, table, "\n}"), numbers);
    };
    char const notification[] = "update/protocol/UpdateNotification.h";
    compare(notification, "enum Code", "### Codes", "local code_names");
    compare(notification, "enum RestartKind", "### Restart kinds", "local restart_names");
    compare("update/protocol/DeviceStatus.h", "enum class", "### Status", "local status_names");

    // Does not compile when a limit is added or goes away.
    auto const [request, header, stall, completion, wait] = update::SessionLimits();
    support::Numbers const limits = {{"requestAnswer", request},
                                     {"headerAnswer", header},
                                     {"transferStall", stall},
                                     {"completion", completion},
                                     {"notification", wait}};
    EXPECT_EQ(numbersOf(document, "### Time limits", "\n#"), limits);
}

}  // namespace
