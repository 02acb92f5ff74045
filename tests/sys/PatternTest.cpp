#include <gtest/gtest.h>

#include <string>

#include "sys/matchesPattern.h"

namespace {

TEST(Pattern, Matches) {
    struct Row {
        char const* pattern;
        char const* name;
        bool expected;
    };
    for (Row const& row :
         {Row{"*", "", true}, Row{"*", ".hidden", true}, Row{"", "a", false}, Row{"?", "", false},
          Row{"?", "\xff", true}, Row{"?", "ab", false}, Row{"a*", "a", true},
          Row{"a*b", "ab", true}, Row{"a*c", "abcbc", true}, Row{"a*c", "abcb", false},
          Row{"*.rvl", "x.RVL", false}, Row{"**?**", "", false}, Row{"*ab?d*", "aabcd", true},
          Row{"[a]", "a", false}}) {
        EXPECT_EQ(sys::matchesPattern(row.name, row.pattern), row.expected)
            << row.pattern << " on " << row.name;
    }
    std::string pattern;
    for (int i = 0; i < 100; ++i) {
        pattern += "*a";
    }
    EXPECT_FALSE(sys::matchesPattern(std::string(20'000, 'a') + "b", pattern)) << "in our time";
}

}  // namespace
