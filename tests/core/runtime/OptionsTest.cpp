#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/runtime/Application.h"
#include "tests/support/StatusFolder.h"

namespace {

using core::Application;
using core::String;

char const grammar[] = "h|help=0>o|origin=1>a|address=1>p|pair=2>c|count=";

struct TestedApplication : private support::StatusFolder, public Application {
    TestedApplication() : Application("options") {}
};

Application& application() {
    static TestedApplication theApplication;
    return theApplication;
}

/// The stored options as "name=values", joined by blanks, and behind " ! " the errors.
std::string parsed(std::vector<char const*> words, char const* with = grammar) {
    core::StringArray errors(16);
    words.insert(words.begin(), "program");
    EXPECT_TRUE(application().CommandLinePrepare(static_cast<int>(words.size()), words.data(), with,
                                                 errors));
    std::string result;
    for (int i = 0; i < application().CountOptions(); ++i) {
        String shortName;
        String longName;
        String values;
        EXPECT_TRUE(application().GetOption(i, shortName, longName, values));
        result.append(i > 0 ? " " : "").append(shortName.getCString());
        result.append("=").append(values.getCString());
    }
    for (int i = 0; i < errors.Count(); ++i) {
        result.append(" ! ").append(errors[i].getCString());
    }
    return result;
}

TEST(Options, Grammar) {
    struct Row {
        std::vector<char const*> words;
        char const* expected;
    } const rows[] = {
        {{}, ""},
        {{"-h", "x"}, " ! Invalid number of arguments=-h x"},
        {{"-o", "f"}, "o=f"},
        {{"--origin", "f"}, "o=f"},
        {{"--ORIGIN=f"}, "o=f"},
        {{"-o=a=b"}, "o=a=b"},
        {{"-o", "a", "-o", "b"}, "o=a ! Invalid number of arguments=-o a b"},
        {{"-o", "a", "-o"}, "o=a ! Invalid number of arguments=-o a "},
        {{"-o"}, " ! Invalid number of arguments=-o "},
        {{"-p", "a", "b"}, "p=a|b"},
        {{"-p", "a", "-p", "b"},
         " ! Invalid number of arguments=-p a ! Invalid number of arguments=-p b"},
        {{"-p=a|b"}, "p=a|b"},
        {{"-x", "a", "b"}, " ! Invalid option=-x a|b"},
        {{"--extra=1"}, " ! Invalid option=--extra 1"},
        {{"-ho", "f"}, " ! Invalid option=-ho f"},
        {{"-c", "1"}, " ! Invalid number of arguments=-c 1"},
        {{"file", "-h"}, "h="},
        {{"-"}, " ! Invalid option= "},
        {{"--"}, " ! Invalid option= "},
        {{"-="}, " ! Invalid option=-= "},
        {{"", "-o", ""}, " ! Invalid number of arguments=-o "},
        {{nullptr, "-h", nullptr}, "h="},
    };
    for (Row const& row : rows) {
        EXPECT_EQ(parsed(row.words), row.expected);
    }
}

TEST(Options, MalformedGrammars) {
    for (char const* const bad : {"", ">", "=", ">>=>", "h", "=0>", "h|help", "h|help=x"}) {
        EXPECT_NE(parsed({"-h", "a"}, bad).find(" ! Invalid "), std::string::npos) << bad;
    }
    EXPECT_EQ(parsed({"-h"}, "h|help=-7"), "h=") << "a negative count is 0";
    for (char const* const nameless : {"a|=1>b|both=0", "c|count>b|both=0"}) {
        EXPECT_EQ(parsed({"-b"}, nameless), " ! Invalid number of arguments=-b ")
            << "two absent names are the same";
    }
    std::string huge;
    for (int i = 0; i < 5000; ++i) {
        huge.append("x").append(std::to_string(i)).append("|long=99999999999>");
    }
    EXPECT_EQ(parsed({"-X4999"}, huge.c_str()), " ! Invalid number of arguments=-X4999 ");
    EXPECT_EQ(parsed({"-\x01\xC3\xA4", "\xFF"}), " ! Invalid option=-\x01\xC3\xA4 \xFF");
}

TEST(Options, Queries) {
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
}

TEST(Version, Texts) {
    using core::version::CEDevStage;
    Application& tool = application();
    tool.setVersionNumber("in words");
    EXPECT_STREQ(tool.getVersionNumber().getCString(), "in words");
    tool.setVersionNumber(1, 0);
    EXPECT_STREQ(tool.getVersionLong(true).getCString(), "options 1.00");
    tool.setVersionModelName("Model %1");
    tool.setDescription("What it does\nand more");
    EXPECT_STREQ(tool.getVersionLong(true).getCString(), "options 1.00 (Model %1) - What it does");
    EXPECT_STREQ(tool.getDescription().getCString(), "What it does\nand more");
    tool.setBuildVersion("77");
    EXPECT_STREQ(tool.getBuildVersion().getCString(), "77");
    char const* const words[] = {"development", "alpha", "beta"};
    for (int stage = 25; stage < 100; stage += 25) {
        tool.setDevStage(static_cast<CEDevStage>(stage));
        EXPECT_TRUE(tool.getVersionShort() ==
                    String("options 1.00 build 77 ").AppendNew(words[stage / 25 - 1]));
    }
    tool.setVersionNumber(12, 345);
    EXPECT_STREQ(tool.getVersionLong(false).getCString(),
                 "options 12.345 build 77 beta (Model %1)");
    tool.clearBuildVersion();
    EXPECT_STREQ(tool.getVersionBuild().getCString(), "12.345");
    core::version::free();
    EXPECT_STREQ(tool.getVersionLong(true).getCString(), " 0.00");
}

}  // namespace
