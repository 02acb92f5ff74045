#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <string>

#include "sys/cmd.h"
#include "sys/env.h"
#include "sys/pid.h"
#include "tests/support/PrintText.h"

namespace {

namespace env = sys::env;
namespace cmd = sys::cmd;

TEST(Env, ValuesAndEntries) {
    for (int const length : {0, 1, 32766, 32767, 100'000}) {
        core::String const value = core::String::OfChar('\xff', length);
        setenv("RAVE", value.getCString(), 1);
        EXPECT_EQ(env::getEnvironmentVariable("RAVE"), length < 32767 ? value : "") << length;
    }
    setenv("RAVE", "B=%1", 1);
    for (char const* missing : {"", "RAVE=B", "=", "rave"}) {
        EXPECT_EQ(env::getEnvironmentVariable(missing), "") << missing;
    }
    clearenv();
    core::StringArray list;
    list.Add("before");
    EXPECT_FALSE(env::getEnvironment(list));
    EXPECT_FALSE(env::getPathDirectories(list));
    setenv("Z", "a=b", 1);
    setenv("A", "\n", 1);
    EXPECT_TRUE(env::getEnvironment(list));
    EXPECT_EQ(list.AsString(), "before\r\nZ=a=b\r\nA=\n\r\n");
}

TEST(Env, FoldersOfThePath) {
    for (char const* path : {"a::b", "a:", ":", ""}) {
        setenv("PATH", path, 1);
        core::StringArray list;
        core::StringArray expected;
        EXPECT_EQ(env::getPathDirectories(list), *path != '\0') << path;
        core::String(path).Split(expected, ':');
        EXPECT_EQ(list.AsString(), expected.AsString());
    }
}

TEST(Process, KeepsNoRecordAndRunsNothing) {
    EXPECT_FALSE(sys::pid::store("x", 1) || sys::pid::exists("x", true) || sys::pid::clear("x"));
    EXPECT_FALSE(sys::pid::isRunning(1) || sys::pid::isRunning("x") || sys::pid::get("x", true));
    EXPECT_EQ(sys::pid::getFileName("x") + sys::pid::cmdline(1) + sys::pid::cmdline("x"), "");
    core::StringArray const none;
    core::StringArray some;
    some.Add("exit 0");
    EXPECT_EQ(cmd::command("exit 0", true, ""), -1);
    EXPECT_EQ(cmd::commands(some, true, ""), -1);
    EXPECT_EQ(cmd::background(some, ""), -1);
    EXPECT_EQ(cmd::services(some, cmd::start, ""), -1);
    EXPECT_EQ(cmd::commands(none, true, "") + cmd::services(none, cmd::start, ""), 0);
    EXPECT_EQ(cmd::serviceLine("x", cmd::stop), "service x stop");
    EXPECT_EQ(cmd::serviceLine("%1", cmd::restart), "service %1 restart");
    EXPECT_EQ(cmd::service("x", static_cast<cmd::ServiceOp>(INT_MIN), ""), -1);
}

}  // namespace
