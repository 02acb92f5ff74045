#include <gtest/gtest.h>

#include "program/usage.h"
#include "tests/support/PrintText.h"
#include "tests/support/lines.h"

TEST(Usage, ColoursWordsAndAlignsMeanings) {
    using namespace program::usage;
    EXPECT_EQ(heading("h") + literal("l") + optional("o"),
              "\x1B[93mh\x1B[39m\x1B[97ml\x1B[39m\x1B[37mo\x1B[39m");
    EXPECT_EQ(support::outputOf([] {
                  print({{"a longer line"}, {"-o", "m"}, {"-ab", "n"}});
              }),
              "a longer line\n\t-o   : m\n\t-ab  : n\n\n");
}
