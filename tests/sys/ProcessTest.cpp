#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "sys/cmd.h"
#include "sys/env.h"
#include "sys/pid.h"
#include "tests/support/PrintText.h"

namespace {

namespace env = sys::env;
namespace cmd = sys::cmd;

TEST(Env, Values) {
    struct Row {
        std::string value;
        bool fits;
    };
    for (Row const& row : {Row{"plain", true}, Row{"%1=\n\x01\xff", true}, Row{"", true},
                           Row{std::string(32766, 'v'), true}, Row{std::string(32767, 'v'), false},
                           Row{std::string(100'000, 'v'), false}}) {
        setenv("RAVE", row.value.c_str(), 1);
        EXPECT_EQ(env::getEnvironmentVariable("RAVE"), row.fits ? row.value.c_str() : "");
    }
    setenv("RAVE", "B=C", 1);
    for (char const* missing : {"", "RAVE=B", "=", "RAV", "rave", "%1"}) {
        EXPECT_EQ(env::getEnvironmentVariable(missing), "") << missing;
    }
}

TEST(Env, AllEntriesInTheirOrder) {
    clearenv();
    core::StringArray list;
    list.Add("before");
    EXPECT_FALSE(env::getEnvironment(list));
    EXPECT_FALSE(env::getPathDirectories(list));
    setenv("Z", "a=b", 1);
    setenv("A", "", 1);
    putenv(const_cast<char*>(""));
    setenv("M", "\n", 1);
    EXPECT_TRUE(env::getEnvironment(list));
    EXPECT_EQ(list.AsString(), "before\r\nZ=a=b\r\nA=\r\nM=\n\r\n");
}

TEST(Env, FoldersOfThePath) {
    struct Row {
        char const* path;
        char const* expected;
    };
    for (Row const& row : {Row{"/bin", "/bin,"}, Row{"a::b", "a,,b,"}, Row{"a:", "a,"},
                           Row{":", ","}, Row{"a;b", "a;b,"}, Row{"", ""}}) {
        setenv("PATH", row.path, 1);
        core::StringArray list;
        EXPECT_EQ(env::getPathDirectories(list), *row.path != '\0') << row.path;
        EXPECT_EQ(list.AsString().ReplaceNewLine(","), row.expected);
    }
    EXPECT_EQ(env::getPathListSeparator(), ":");
}

TEST(Pid, KeepsNoRecord) {
    EXPECT_EQ(sys::pid::getFileName("x"), "");
    EXPECT_FALSE(sys::pid::store("x", 1));
    EXPECT_FALSE(sys::pid::exists("x", true) || sys::pid::exists("x", false));
    EXPECT_FALSE(sys::pid::clear("x"));
    EXPECT_EQ(sys::pid::get("x", true), 0);
    EXPECT_FALSE(sys::pid::isRunning(1) || sys::pid::isRunning("x"));
    EXPECT_EQ(sys::pid::cmdline(1) + sys::pid::cmdline("x"), "");
}

TEST(Cmd, RunsNothing) {
    core::StringArray none;
    core::StringArray lines;
    lines.Add("exit 0");
    lines.Add("");
    EXPECT_EQ(cmd::command("exit 0", true, ""), -1);
    EXPECT_EQ(cmd::background("exit 0", ""), -1);
    EXPECT_EQ(cmd::commands(lines, true, "out"), -1);
    EXPECT_EQ(cmd::background(lines, "out"), -1);
    EXPECT_EQ(cmd::commands(none, false, ""), 0);
    EXPECT_EQ(cmd::background(none, ""), 0);
    EXPECT_EQ(cmd::service("x", cmd::stop, ""), -1);
    EXPECT_EQ(cmd::services(lines, cmd::start, ""), -1);
    EXPECT_EQ(cmd::services(none, cmd::start, ""), 0);
}

TEST(Cmd, ServiceLines) {
    EXPECT_EQ(cmd::serviceLine("x", cmd::start), "service x start");
    EXPECT_EQ(cmd::serviceLine("x", cmd::stop), "service x stop");
    EXPECT_EQ(cmd::serviceLine("%1", cmd::restart), "service %1 restart");
    for (int const op : {-1, 3, INT_MAX}) {
        EXPECT_EQ(cmd::serviceLine("x", static_cast<cmd::ServiceOp>(op)), "");
        EXPECT_EQ(cmd::service("x", static_cast<cmd::ServiceOp>(op), ""), -1);
    }
}

}  // namespace
