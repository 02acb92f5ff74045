#include <gtest/gtest.h>

#include "tests/support/PrintText.h"
#include "tests/support/lines.h"
#include "update/print.h"

namespace {

using namespace update;

TEST(Print, OnlyAReportAfterAReportReplacesIt) {
    EXPECT_EQ(support::outputOf([] {
                  print("a", false);
                  println("b", true);
                  printProgress("first");
                  printProgress("second");
                  print("", true);
                  printProgress("third");
                  println(2, "c", true);
                  print(-1, "d", false);
                  print(1, "", true);
              }),
              "ab\nfirst\nsecond          \n\nthird\n\t\tc\nd\t\n");
}

}  // namespace
