// The operations that std::string has too, held against it.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "core/text/String.h"
#include "core/text/StringArray.h"
#include "tests/support/PrintText.h"

namespace {

using core::String;

constexpr int rounds = 40000;

class StringAgainstStandard : public testing::Test {
protected:
    int number(int from, int to) { return std::uniform_int_distribution(from, to)(random_); }

    /// Few different characters, so that patterns are found.
    std::string text(int longest) {
        std::string result(static_cast<std::size_t>(number(0, longest)), ' ');
        for (char& c : result) {
            c = "ab,\x80"[number(0, 3)];
        }
        return result;
    }

    /// Mostly around a text of that length, sometimes at the ends of the range.
    int position(std::string const& text) {
        int const length = static_cast<int>(text.size());
        int const choice = number(0, 19);
        return choice == 0 ? INT_MAX : choice == 1 ? INT_MIN : number(-2, length + 2);
    }

    std::mt19937 random_{20180307};
};

int asPosition(std::size_t found) {
    return found == std::string::npos ? -1 : static_cast<int>(found);
}

std::size_t clipped(int start, std::string const& text) {
    return std::min(static_cast<std::size_t>(std::max(start, 0)), text.size());
}

/// std::string compares unsigned bytes.
std::vector<signed char> asSigned(std::string const& text) {
    return {text.begin(), text.end()};
}

TEST_F(StringAgainstStandard, Searches) {
    for (int round = 0; round < rounds; ++round) {
        std::string const whole = text(24);
        std::string const pattern = text(3) + "a";
        int const start = position(whole);
        String const ours(whole.c_str());
        SCOPED_TRACE(testing::Message() << whole << " / " << pattern << " from " << start);

        std::size_t const from = static_cast<std::size_t>(std::max(start, 0));
        ASSERT_EQ(ours.Find(pattern.c_str(), start), asPosition(whole.find(pattern, from)));
        ASSERT_EQ(ours.Find(pattern[0], start), asPosition(whole.find(pattern[0], from)));
        int const last = start < 0 ? -1 : asPosition(whole.rfind(pattern, from));
        ASSERT_EQ(ours.RFind(pattern.c_str(), start), last);
        String const upper = ours.UpperCase();
        String const upperPattern = String(pattern.c_str()).UpperCase();
        ASSERT_EQ(ours.FindIC(upperPattern, start), upper.Find(upperPattern, start));
        ASSERT_EQ(ours.RFindIC(upperPattern, start), upper.RFind(upperPattern, start));
        ASSERT_EQ(ours.Compare(pattern.c_str()) <=> 0, asSigned(whole) <=> asSigned(pattern));
    }
}

TEST_F(StringAgainstStandard, Edits) {
    String ours;
    std::string theirs;
    std::vector<std::pair<String, std::string>> copies;
    for (int round = 0; round < rounds; ++round) {
        int const start = position(theirs);
        int const count = position(theirs);
        // A negative count is all there is: npos and its neighbours.
        auto const size = static_cast<std::size_t>(count);
        std::string const piece = text(4);
        SCOPED_TRACE(testing::Message() << theirs << " at " << start << ", " << count);

        ASSERT_EQ(ours.Copy(start, count), theirs.substr(clipped(start, theirs), size).c_str());
        int const choice = number(0, 3);
        if (choice == 0) {
            ours.Insert(piece.c_str(), start);
            theirs.insert(clipped(start, theirs), piece);
        } else if (choice == 1) {
            ours.Delete(start, count);
            theirs.erase(clipped(start, theirs), size);
        } else if (choice == 2) {
            ours += piece.c_str();
            theirs += piece;
        } else {
            copies.emplace_back(ours, theirs);
        }
        ASSERT_EQ(ours, theirs.c_str());
        if (theirs.size() > 60) {
            ours.Clear();
            theirs.clear();
        }
    }
    for (auto const& [copy, expected] : copies) {
        ASSERT_EQ(copy, expected.c_str()) << "a copy must not see what happens to its original";
    }
}

TEST_F(StringAgainstStandard, ReplacesAndSplits) {
    for (int round = 0; round < rounds; ++round) {
        std::string const whole = text(24);
        std::string const find = text(2) + ",";
        std::string const with = text(3);
        SCOPED_TRACE(testing::Message() << whole << " / " << find << " / " << with);

        std::string replaced(whole);
        for (std::size_t at = replaced.find(find); at != std::string::npos;
             at = replaced.find(find, at + with.size())) {
            replaced.replace(at, find.size(), with);
        }
        ASSERT_EQ(String(whole.c_str()).Replace(find.c_str(), with.c_str()), replaced.c_str());

        core::StringArray pieces(1);
        String(whole.c_str()).Split(pieces, find.c_str());
        std::size_t start = 0;
        for (int i = 0; i < pieces.Count(); ++i) {
            std::size_t const end = std::min(whole.find_first_of(find, start), whole.size());
            ASSERT_EQ(pieces[i], whole.substr(start, end - start).c_str());
            start = end + 1;
        }
        ASSERT_GE(start, whole.size());
    }
}

// What has no counterpart is at least called with everything; the sanitizers watch.
TEST_F(StringAgainstStandard, StaysWithinTheTextForAnyArgument) {
    for (int round = 0; round < rounds / 4; ++round) {
        std::string const whole = text(12);
        String text(whole.c_str());
        int const a = position(whole);
        int const b = position(whole);
        int const length = text.GetLength();
        ASSERT_LE(text.Copy(a, b, b, a).GetLength(), 2 * length);
        ASSERT_LE(text.CopyRange(a, b, true).Right(a).GetLength(), length);
        ASSERT_EQ(text.GetChar(a) == '\0', a < 0 || a >= length);
        ASSERT_LE(text.GetProperty("a", a).GetLength(), length);
        text.SetChar(a, 'x');
        text.SetChar(b, '\0');
        text.DeleteFromRight(a);
        text.DeleteFromLeft(b);
        ASSERT_LE(text.GetLength(), length);
    }
}

}  // namespace
