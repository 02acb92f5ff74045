#include <gtest/gtest.h>

#include <vector>

#include "core/runtime/Application.h"
#include "tests/support/PrintText.h"
#include "tests/support/StatusDirectory.h"

namespace {

using namespace core;

char const grammar[] = "h|help=0>o|origin=1>a|address=1>p|pair=2>c|count=";

struct TestedApplication : private support::StatusDirectory, public Application {
    TestedApplication() : Application("options") {}
};

Application& application() {
    static TestedApplication theApplication;
    return theApplication;
}

/// Returns the stored options as "name=values", separated by spaces, then each error after " ! ".
String parsed(std::vector<char const*> words, char const* with = grammar) {
    StringArray errors(16);
    words.insert(words.begin(), "program");
    EXPECT_TRUE(application().CommandLinePrepare(static_cast<int>(words.size()), words.data(), with,
                                                 errors));
    String result;
    for (int i = 0; i < application().CountOptions(); ++i) {
        String shortName;
        String longName;
        String values;
        EXPECT_TRUE(application().GetOption(i, shortName, longName, values));
        result += (i > 0 ? " " : "") + shortName + '=' + values;
    }
    for (int i = 0; i < errors.Count(); ++i) {
        result += " ! " + errors[i];
    }
    return result;
}

TEST(Options, FollowTheGrammar) {
    std::pair<char const*, std::vector<std::vector<char const*>>> const rows[] = {
        {"", {{}}},
        {"o=f", {{"-o", "f"}, {"--origin", "f"}, {"--ORIGIN=f"}}},
        {"o=a=b", {{"-o=a=b"}}},
        {"p=a|b", {{"-p", "a", "b"}, {"-p=a|b"}}},
        {"h=", {{"file", "-h"}, {nullptr, "-h", nullptr}}},
        {"o=a ! Invalid number of arguments=-o a b", {{"-o", "a", "-o", "b"}}},
        {"o=a ! Invalid number of arguments=-o a ", {{"-o", "a", "-o"}}},
        {" ! Invalid number of arguments=-o ", {{"-o"}, {"", "-o", ""}}},
        {" ! Invalid number of arguments=-h x", {{"-h", "x"}}},
        {" ! Invalid number of arguments=-c 1", {{"-c", "1"}}},
        {" ! Invalid number of arguments=-p a ! Invalid number of arguments=-p b",
         {{"-p", "a", "-p", "b"}}},
        {" ! Invalid option=-x a|b", {{"-x", "a", "b"}}},
        {" ! Invalid option=--extra 1", {{"--extra=1"}}},
        {" ! Invalid option=-ho f", {{"-ho", "f"}}},
        {" ! Invalid option= v", {{"-", "v"}, {"--", "v"}}},
        {" ! Invalid option=-=x ", {{"-=x"}}},
    };
    for (auto const& [expected, commandLines] : rows) {
        for (auto const& words : commandLines) {
            EXPECT_EQ(parsed(words), expected);
        }
    }
}

TEST(Options, RejectArgumentsOfMalformedGrammars) {
    for (char const* const bad : {"", ">", "=", ">>=>", "h", "=0>", "h|help", "h|help=x"}) {
        EXPECT_NE(parsed({"-h", "a"}, bad).Find(" ! Invalid "), -1) << bad;
    }
    EXPECT_EQ(parsed({"-h"}, "h|help=-7"), "h=") << "a negative count is 0";
    for (char const* const nameless : {"a|=1>b|both=0", "c|count>b|both=0"}) {
        EXPECT_EQ(parsed({"-b"}, nameless), " ! Invalid number of arguments=-b ")
            << "two empty names are equal";
    }
    EXPECT_EQ(parsed({"-H"}, "h|help=99999999999"), " ! Invalid number of arguments=-H ");
    EXPECT_EQ(parsed({"-\x01\xC3\xA4", "\xFF"}), " ! Invalid option=-\x01\xC3\xA4 \xFF");
}

TEST(Options, AreFoundByEitherName) {
    EXPECT_STREQ(application().Application::ClassName(), "Application");
    parsed({"-o", "file"});
    for (char const* const query : {"o", "O", "origin", "o|origin", "x|Origin", "o|x"}) {
        String values;
        EXPECT_TRUE(application().GetOptionValues(query, values)) << query;
        EXPECT_STREQ(values.getCString(), "file");
    }
    for (char const* const query : {"", "|", "origins", "orig", "a"}) {
        EXPECT_FALSE(application().FindOption(query)) << query;
    }
    EXPECT_EQ(parsed({"--long"}, "|long=0"), "=");
    EXPECT_FALSE(application().FindOption("")) << "an empty name is not found";
}

TEST(Version, ComposesTexts) {
    Application& tool = application();
    tool.setVersionNumber("x");
    EXPECT_STREQ(tool.getVersionNumber().getCString(), "x");
    tool.setVersionNumber(1, 0);
    EXPECT_STREQ(tool.getVersionLong(true).getCString(), "options 1.00");
    tool.setVersionModelName("M");
    tool.setDescription("What it does\r\nand more");
    EXPECT_STREQ(tool.getVersionLong(true).getCString(), "options 1.00 (M) - What it does");
    tool.setDescription("\nempty first line");
    EXPECT_STREQ(tool.getVersionLong(true).getCString(), "options 1.00 (M)");
    tool.setDescription("In %1 line");
    EXPECT_STREQ(tool.getVersionLong(true).getCString(), "options 1.00 (M) - In %1 line");
    EXPECT_STREQ(tool.getDescription().getCString(), "In %1 line");
    tool.setBuildVersion("77");
    EXPECT_STREQ(tool.getBuildVersion().getCString(), "77");
    for (auto const& [stage, word] : {std::pair{25, "development"}, {50, "alpha"}, {75, "beta"}}) {
        tool.setDevStage(static_cast<version::CEDevStage>(stage));
        EXPECT_EQ(tool.getVersionShort(), "options 1.00 build 77 " + String(word));
    }
    tool.setVersionNumber(12, 345);
    EXPECT_EQ(tool.getVersionLong(false), "options 12.345 build 77 beta (M)");
    tool.clearBuildVersion();
    EXPECT_STREQ(tool.getVersionBuild().getCString(), "12.345");
    core::version::free();
    EXPECT_STREQ(tool.getVersionLong(true).getCString(), " 0.00");
}

}  // namespace
