#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <thread>

#include "core/runtime/Application.h"
#include "core/runtime/CountDownTimer.h"
#include "sys/platform/Process.h"
#include "tests/support/StatusDirectory.h"
#include "tests/support/system.h"

namespace {

using namespace core;

// A process has one application, whose termination cannot be withdrawn: each life is lived in a
// process of its own, which tells its story on standard error.

std::jthread terminatesSoon() {
    return std::jthread([] {
        Application::Sleep(20, false);
        Application::RequestTermination(Application::normalRequest);
    });
}

struct Life : public Application {
    Life() : Application("life") {}

    int failingInits = 2;
    bool terminateInInit = false;
    std::jthread other;

    static void tell(char const* event) {
        std::fprintf(stderr, "%s:%d%d ", event, AppStatus("life").GetStatus(),
                     Instance()->getApplicationStatus());
    }
    bool InitOnce() override {
        tell("once");
        return false;
    }
    bool Init() override {
        tell("init");
        if (terminateInInit) {
            RequestTermination(noRequest);
            RequestTermination(normalRequest);
        }
        if (failingInits-- > 0) {
            return false;
        }
        other = terminatesSoon();
        return true;
    }
    void Done() override { tell("done"); }
};

class ApplicationRun : public testing::Test {
    // Ours, not the dying process's: it would not come to remove it.
    support::StatusDirectory directory_;
};

void expectTrue(bool (*check)()) {
    EXPECT_EXIT(std::exit(check() ? 7 : 0), testing::ExitedWithCode(7), "");
}

TEST_F(ApplicationRun, Lives) {
    // Done is for those whose Init was finished.
    for (auto const& [terminates, story] :
         {std::pair{false, "^born:10 once:21 init:21 init:22 init:22 done:44 ended:65 $"},
          std::pair{true, "^born:10 once:21 init:21 ended:65 $"}}) {
        EXPECT_EXIT(
            {
                Life life;
                life.terminateInInit = terminates;
                Life::tell("born");
                life.Run();
                Life::tell("ended");
                life.other = {};
                std::exit(life.TerminationRequested());
            },
            testing::ExitedWithCode(1), story);
    }
}

TEST_F(ApplicationRun, OneApplicationAProcess) {
    EXPECT_EXIT(
        {
            Life first;
            Life second;
        },
        testing::ExitedWithCode(1), "^$");
    expectTrue([] {
        bool const none = Application::Instance() == nullptr &&
                          Application::AppName() == "GApplication == nil" &&
                          !Application::IsTerminationRequested();
        Application::RequestTermination(Application::normalRequest);
        StringArray grammar(16);
        StringArray errors(16);
        grammar.Add("h|help=0");
        grammar.Add("g|grow=0");
        bool const refused =
            Application::AddToArguments("h|", "", grammar, errors) == -1 && errors.Count() == 0 &&
            Application::AddToArguments("x|", "", grammar, errors) == -1 &&
            Application::AddToArguments("h|", "x", grammar, errors) == -1 && errors.Count() == 2;
        Life life;
        bool const one = Application::Instance() == &life && Application::AppName() == "life" &&
                         Application::AddToArguments("h|", "", grammar, errors) == 0 &&
                         Application::AddToArguments("g|", "", grammar, errors) == 1 &&
                         Application::AddToArguments("g|", "", grammar, errors) == 1 &&
                         life.FindOption("help") && life.FulfillTerminationRequest() == 0 &&
                         !Application::IsTerminated() && !Application::IsADaemon() &&
                         Application::ProcessID() + Application::SessionID() == 0 &&
                         Application::MainThreadID() == sys::platform::currentThreadId();
        return none && refused && one && !Application::IsTerminationRequested();
    });
}

TEST_F(ApplicationRun, TerminationEndsSleepsAndWaits) {
    expectTrue([] {
        Life life;
        Event event;
        CountDownTimer const slept(20ULL);
        bool good = Application::Sleep(20, false) == 0 && slept.Expired() &&
                    event.Wait(1) == Event::timedOut && Application::Sleep(1, true) == 0;
        event.Signal();
        good = good && event.Wait(0) == Event::signalled && event.Wait(0) == Event::signalled;
        event.Clear();
        std::jthread const other = terminatesSoon();
        good = good && event.Wait(1'000'000) == Event::terminating &&
               Application::Sleep(1'000'000, true) == 1 && Application::Sleep(0, false) == 1;
        return good;
    });
}

TEST(AppStatus, TheFileHoldsTheNumber) {
    support::StatusDirectory const folder;
    AppStatus const status("name");
    EXPECT_STREQ(status.ClassName(), "AppStatus");
    EXPECT_STREQ(Event().ClassName(), "Event");
    EXPECT_STREQ(status.getFilePath().getCString(), (folder.Path() + "/name.status").c_str());
    EXPECT_EQ(status.readFromFile(), -1);
    EXPECT_EQ(status.GetStatus(), -1);
    EXPECT_FALSE(status._setStatus(AppStatus::none));
    EXPECT_TRUE(status._setStatus(AppStatus::running));
    EXPECT_EQ(status.GetStatus(), 3);
    EXPECT_TRUE(status.writeToFile(7));
    EXPECT_EQ(status.readFromFile(), 7);
    EXPECT_EQ(status.GetStatus(), 0);
    for (char const* const content : {"", "x", "3x", "-", "\n"}) {
        folder.Write("name.status", content);
        EXPECT_EQ(status.readFromFile(), -1) << content;
    }
    folder.Write("name.status", "99999999999");
    EXPECT_EQ(status.readFromFile(), 2147483647) << "cut to the range";
    EXPECT_EQ(status.GetStatus(), 0);
    EXPECT_TRUE(status._setStatus(AppStatus::none));
    EXPECT_EQ(status.readFromFile(), -1);

    std::error_code noLinks;
    std::filesystem::create_symlink(folder.Write("other", "kept"), folder.PathOf("name.status"),
                                    noLinks);
    EXPECT_EQ(status.writeToFile(1), bool(noLinks)) << "links are not followed";
    status._setStatus(AppStatus::none);
    std::filesystem::create_directory(folder.PathOf("name.status"));
    EXPECT_FALSE(status._setStatus(AppStatus::running)) << "a folder in its place is no crash";
    EXPECT_EQ(status.readFromFile(), -1);
    if (support::onWindows()) {
        AppStatus::setFolder("/run");
        EXPECT_FALSE(status.writeToFile(1));
    }
}

}  // namespace
