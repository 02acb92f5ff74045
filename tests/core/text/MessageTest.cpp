#include <gtest/gtest.h>

#include <climits>

#include "core/text/message.h"
#include "core/text/printable.h"
#include "tests/support/PrintText.h"

namespace {

using namespace core;

TEST(Message, FillsPlaceholdersInOnePass) {
    EXPECT_EQ(message("%2 of %1", "%2", String("a%1")), "a%1 of %2");
    EXPECT_EQ(message("%1%9%1", 1, 2, 3, 4, 5, 6, 7, 8, LLONG_MIN), "1-92233720368547758081");
    EXPECT_EQ(message("100% %0 %2 %: %", ULLONG_MAX), "100% %0 %2 %: %");
    EXPECT_EQ(message("%1", static_cast<char const*>(nullptr)), "");
    EXPECT_EQ(hex(0xABC, 4), "0x0ABC");
}

TEST(Message, PrintsErrorsSafelyAndLimitsTheirNumber) {
    char const* const kept = " ~\u00A0\u061B\u061D\u200D\u2010\u2027\u202F\u2065\u206A";
    EXPECT_EQ(printable(kept), kept);
    EXPECT_EQ(printable("\x1F\xC2\x80\xC2\x9F\u200E\u200F\u2028\u2066\u2069"), "????????");
    EXPECT_EQ(faultLine(fault("A\x1B[2J", "b=%1", "\xE2\x80\xAE\xD8\x9C\n\xFF\x7F\xC2\x85\u00FC")),
              "*** A?[2J: b=??????\u00FC");
    std::vector<Fault> errors(20, fault("A", "b"));
    EXPECT_EQ(faultLines(errors).size(), 20u);
    errors.push_back(fault("A", "last"));
    ASSERT_EQ(faultLines(errors).size(), 21u);
    EXPECT_EQ(faultLines(errors)[19], "*** A: b");
    EXPECT_EQ(faultLines(errors)[20], "*** More errors: There are 1 more");
}

}  // namespace
