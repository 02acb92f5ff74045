#include <gtest/gtest.h>

#include <string>

#include "sys/platform/Process.h"
#include "sys/process.h"
#include "tests/support/PrintText.h"
#include "tests/support/system.h"

namespace {

namespace env = sys::env;

TEST(Env, ReadsValuesAndEntries) {
    for (int const length : {0, 1, 32766, 32767, 100'000}) {
        core::String const value = core::String::OfChar('v', length);
        support::setVariable("RAVE", nullptr);
        bool const set = support::setVariable("RAVE", value.getCString());
        EXPECT_EQ(env::getEnvironmentVariable("RAVE"), set && length < 32767 ? value : "")
            << length;
    }
    support::setVariable("RAVE", "B=%1");
    for (char const* missing : {"", "RAVE=B", "=", "rave_"}) {
        EXPECT_EQ(env::getEnvironmentVariable(missing), "") << missing;
    }
    for (std::string const& entry : sys::platform::environmentEntries()) {
        support::setVariable(entry.substr(0, entry.find('=', 1)).c_str(), nullptr);
    }
    core::StringArray list;
    list.Add("before");
    EXPECT_FALSE(env::getEnvironment(list));
    EXPECT_FALSE(env::getPathDirectories(list));
    support::setVariable("A", "a=b");
    support::setVariable("Z", "\n");
    EXPECT_TRUE(env::getEnvironment(list));
    EXPECT_EQ(list.AsString(), "before\r\nA=a=b\r\nZ=\n\r\n");
    support::setVariable("PATH", support::onWindows() ? "a:b;;c" : "a;b::c");
    list.Clear();
    EXPECT_TRUE(env::getPathDirectories(list));
    EXPECT_EQ(list.AsString(), support::onWindows() ? "a:b\r\n\r\nc\r\n" : "a;b\r\n\r\nc\r\n");
}

TEST(Process, RunsNoCommands) {
    EXPECT_EQ(sys::cmd::service("x", sys::cmd::start, ""), -1);
    EXPECT_EQ(sys::cmd::serviceLine("x", sys::cmd::restart), "service x restart");
    EXPECT_EQ(sys::cmd::service("x", static_cast<sys::cmd::ServiceOp>(3), ""), -1);
}

}  // namespace
