#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <iterator>

#include "tests/device/ScenarioDevice.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/run.h"

namespace {

/// A session of the real program, whose limits are to be neither shorter nor much longer than what
/// a user is told.
struct Row {
    char const* scenario;  ///< of the examples
    double atLeast;        ///< seconds
    double atMost;
    char const* end;  ///< what the last line begins with
    long waits;       ///< lines of "still updating", and as many errors of time-outs
};

std::ostream& operator<<(std::ostream& out, Row const& row) {
    return out << row.scenario;
}

class SlowTest : public testing::TestWithParam<Row> {};

TEST_P(SlowTest, KeepsItsLimits) {
    Row const& row = GetParam();
    std::ifstream file(std::string(RAVELINK_SCENARIOS "/").append(row.scenario));
    ScenarioDevice device(std::string(std::istreambuf_iterator<char>(file), {}));
    support::TemporaryFolder const folder;
    std::string const update = folder.Write("update.rvl", std::string(16'000'000, 'x'));
    auto const start = std::chrono::steady_clock::now();
    auto lines = support::run(RAVELINK " -o " + update + " -a " + device.Address()).lines;
    std::chrono::duration<double> const took = std::chrono::steady_clock::now() - start;
    std::erase(lines, "");
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.back().substr(0, std::string(row.end).size()), row.end);
    EXPECT_GE(took.count(), row.atLeast);
    EXPECT_LE(took.count(), row.atMost);
    auto const count = [&](char const* beginning) {
        return std::count_if(lines.begin(), lines.end(),
                             [&](auto const& line) { return line.starts_with(beginning); });
    };
    EXPECT_EQ(count("  System is still updating. "), row.waits);
    EXPECT_EQ(count("*** Connection timeout: ") - (row.atLeast == 10 ? 1 : 0), row.waits);
}

INSTANTIATE_TEST_SUITE_P(
    Limits, SlowTest,
    testing::Values(Row{"silent-request.conf", 10, 15, "*** Connection timeout: ", 0},
                    Row{"restart-firmware.conf", 2, 7, "The device is updated and it will", 0},
                    Row{"stall.conf", 60, 65, "*** Timeout sending the file: ", 0},
                    Row{"silent-trailer.conf", 300, 305, "*** Timeout error: ", 30},
                    // A wait that begins before the five minutes are over lasts its 10 s.
                    Row{"processing-for-ever.conf", 300, 315, "*** Timeout error: ", 0}));

}  // namespace
