#include <gtest/gtest.h>

#include "device/Scenario.h"
#include "tests/support/TemporaryDirectory.h"

namespace {

TEST(Scenario, ReportsEveryErrorOfItsFile) {
    support::TemporaryDirectory const directory;
    std::string const bad = "*** Bad scenario: ";
    std::string const after = "after needs a positive number and works in data only";
    for (auto const& [text, error] : std::vector<std::pair<std::string, std::string>>{
             {"nonsense", bad + "nonsense is not a name-value pair"},
             {"trial = close", bad + "trial is unknown"},
             {"data = close\nDATA = close", bad + "DATA appears twice"},
             {"seed = -1", bad + "seed must be a number from 0 to 4294967295"},
             {"receiveBuffer = 1 MB", bad + "receiveBuffer must be a number from 0 to 1000000000"},
             {"request = %1 %2", bad + "request: unknown action \"%1 %2\""},
             {"request = close,,close", bad + "request: unknown action \"\""},
             {"request = wait", bad + "request: wait needs a number from 0 to 86400000"},
             {"request = wait 86400001", bad + "request: wait needs a number from 0 to 86400000"},
             {"request = WAIT 1 2", bad + "request: wait cannot be followed by 2"},
             {"request = garbage 0", bad + "request: garbage needs a number from 1 to 1000000000"},
             {"request = cut 16 Accepted", bad + "request: cut needs a number from 1 to 15"},
             {"request = cut 1", bad + "request: cut needs a notification"},
             {"request = cut 1 2 3", bad + "request: cut accepts only one notification"},
             {"request = notify", bad + "request: notify needs a notification"},
             {"request = notify %1", bad + "request: notify cannot be followed by %1"},
             {"request = notify Error:", bad + "request: notify cannot be followed by Error:"},
             {"request = notify Error:6x", bad + "request: notify cannot be followed by Error:6x"},
             {"request = notify 1:4294967296",
              bad + "request: notify cannot be followed by 1:4294967296"},
             {"data = after 0, close", bad + "data: " + after},
             {"header = after 5, close", bad + "header: " + after},
         }) {
        device::Scenario scenario;
        std::vector<core::Fault> errors;
        EXPECT_FALSE(device::loadScenario(directory.Write("s", text).c_str(), scenario, errors));
        ASSERT_EQ(errors.size(), 1u) << text;
        EXPECT_EQ(scenario.seed + 2 * scenario.receiveBuffer, 1u)
            << "settings without a value keep their defaults";
        EXPECT_STREQ(core::faultLine(errors[0]).getCString(), error.c_str());
    }
}

}  // namespace
