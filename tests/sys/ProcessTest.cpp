#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "sys/cmd.h"
#include "sys/env.h"
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

TEST(Process, RunsNothingAndSaysSo) {
    core::StringArray const none;
    core::StringArray some;
    some.Add("exit 0");
    EXPECT_EQ(cmd::commands(some, true, "") + cmd::services(some, cmd::start, ""), -2);
    EXPECT_EQ(cmd::commands(none, true, "") + cmd::services(none, cmd::start, ""), 0);
    EXPECT_EQ(cmd::serviceLine("x", cmd::stop), "service x stop");
    EXPECT_EQ(cmd::service("x", static_cast<cmd::ServiceOp>(3), ""), -1);
}

}  // namespace
