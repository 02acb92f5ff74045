#include <gtest/gtest.h>

#include <string>

#include "sys/FileDirectory.h"

namespace {

TEST(Pattern, Matches) {
    using Row = std::tuple<char const*, char const*, bool>;
    for (auto const& [pattern, name, expected] :
         {Row{"*", "", true}, Row{"*", ".hidden", true}, Row{"", "a", false}, Row{"?", "", false},
          Row{"?", "\xff", true}, Row{"?", "ab", false}, Row{"a*", "a", true},
          Row{"a*b", "ab", true}, Row{"a*c", "abcbc", true}, Row{"a*c", "abcb", false},
          Row{"*.rvl", "x.RVL", false}, Row{"**?**", "", false}, Row{"*ab?d*", "aabcd", true},
          Row{"[a]", "a", false}}) {
        EXPECT_EQ(sys::matchesPattern(name, pattern), expected) << pattern << " on " << name;
    }
    std::string stars;
    for (int i = 0; i < 100; ++i) {
        stars += "*a";
    }
    EXPECT_FALSE(sys::matchesPattern(std::string(20'000, 'a') + "b", stars)) << "in our time";
}

}  // namespace
