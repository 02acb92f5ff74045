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

// A process has one application, whose termination is final: each test runs one in a process of its
// own, which prints the events to standard error.

std::jthread terminatesSoon() {
    return std::jthread([] {
        Application::Sleep(20, false);
        Application::RequestTermination(Application::normalRequest);
    });
}

struct TestedApplication : public Application {
    TestedApplication() : Application("tested") {}

    int failingInits = 2;
    bool terminateInInit = false;
    std::jthread other;

    /// Prints the event, the number in the status file and the application status.
    void Print(char const* event) {
        std::fprintf(stderr, "%s:%d%d ", event, AppStatus("tested").GetStatus(),
                     applicationStatus_);
    }
    bool InitOnce() override {
        Print("once");
        return false;
    }
    bool Init() override {
        Print("init");
        if (terminateInInit) {
            RequestTermination(noRequest);
            RequestTermination(normalRequest);
            RequestTermination(delayedRequest);
        }
        if (failingInits-- > 0) {
            return false;
        }
        other = terminatesSoon();
        return true;
    }
    void Done() override { Print("done"); }
};

class ApplicationRun : public testing::Test {
    // In the parent, because the child does not return to delete it.
    support::StatusDirectory directory_;
};

void expectTrue(bool (*check)()) {
    EXPECT_EXIT(std::exit(check() ? 7 : 0), testing::ExitedWithCode(7), "");
}

TEST_F(ApplicationRun, CallsHooksAndWritesStatusInOrder) {
    for (auto const& [terminates, events] :
         {std::pair{false, "^new:10 once:21 init:21 init:22 init:22 done:44 ended:65 $"},
          std::pair{true, "^new:10 once:21 init:21 ended:65 $"}}) {
        EXPECT_EXIT(
            {
                TestedApplication tested;
                tested.terminateInInit = terminates;
                tested.Print("new");
                tested.Run();
                tested.Print("ended");
                tested.other = {};
                std::exit(tested.TerminationRequested() + tested.Result());
            },
            testing::ExitedWithCode(1), events);
    }
}

TEST_F(ApplicationRun, AllowsOneApplicationInAProcess) {
    EXPECT_EXIT(
        {
            TestedApplication first;
            TestedApplication second;
        },
        testing::ExitedWithCode(1), "^$");
    expectTrue([] {
        auto const isUnchanged = [](String const& name) {
            return Application::AppName() == name && !Application::IsTerminationRequested() &&
                   !Application::IsTerminated() && !Application::IsADaemon() &&
                   !Application::IsUsingSysLog() && Application::ProcessID() == 0 &&
                   Application::SessionID() == 0;
        };
        bool const none = isUnchanged("GApplication == nil") &&
                          Application::Instance() == nullptr && Application::MainThreadID() == 0;
        Application::RequestTermination(Application::normalRequest);
        Application::WakeLoop();
        StringArray grammar(16);
        StringArray errors(16);
        grammar.Add("h|help=0");
        grammar.Add("g|grow=0");
        bool const onlyChecked =
            Application::AddToArguments("h|", "", grammar, errors) == -1 && errors.Count() == 0 &&
            Application::AddToArguments("x|", "", grammar, errors) == -1 &&
            Application::AddToArguments("h|", "x", grammar, errors) == -1 && errors.Count() == 2;
        TestedApplication tested;
        bool const stored = Application::AddToArguments("h|", "", grammar, errors) == 0 &&
                            Application::AddToArguments("g|", "", grammar, errors) == 1 &&
                            Application::AddToArguments("g|", "", grammar, errors) == 1 &&
                            tested.FindOption("help");
        return none && onlyChecked && stored && isUnchanged("tested") &&
               Application::Instance() == &tested && tested.FulfillTerminationRequest() == 0 &&
               !tested.Daemonize("tested") && tested._addRef() + tested._release() == 0 &&
               Application::MainThreadID() == sys::platform::currentThreadId();
    });
}

TEST_F(ApplicationRun, TerminationRequestEndsSleepsAndWaits) {
    expectTrue([] {
        TestedApplication tested;
        Event event;
        CountDownTimer timer(20ULL);
        bool good = Application::Sleep(20, false) == 0 && timer.Expired() &&
                    event.Wait(-1) == Event::timedOut && Application::Sleep(1, true) == 0;
        timer.Reset(120);
        good = good && event.Wait(120) == Event::timedOut && timer.Expired();
        event.Signal();
        good = good && event.Wait(0) == Event::signalled && event.Wait(0) == Event::signalled;
        event.Clear();
        std::jthread const other = terminatesSoon();
        good = good && event.Wait(1'000'000) == Event::terminating &&
               Application::Sleep(1'000'000, true) == 1 && Application::Sleep(0, false) == 1;
        return good;
    });
}

TEST(AppStatus, WritesAndReadsTheNumber) {
    support::StatusDirectory const directory;
    AppStatus const status("name");
    EXPECT_STREQ(status.ClassName(), "AppStatus");
    EXPECT_STREQ(Event().ClassName(), "Event");
    EXPECT_STREQ(status.getFilePath().getCString(), (directory.Path() + "/name.status").c_str());
    EXPECT_EQ(status.readFromFile(), -1);
    EXPECT_EQ(status.GetStatus(), -1);
    EXPECT_FALSE(status._setStatus(AppStatus::none));
    for (auto const number : {AppStatus::constructed, AppStatus::ended}) {
        EXPECT_TRUE(status._setStatus(number));
        EXPECT_EQ(status.GetStatus(), number);
    }
    EXPECT_TRUE(status.writeToFile(7));
    EXPECT_EQ(status.readFromFile(), 7);
    EXPECT_EQ(status.GetStatus(), 0);
    for (char const* const content : {"", "x", "3x", "-", "\n"}) {
        directory.Write("name.status", content);
        EXPECT_EQ(status.readFromFile(), -1) << content;
    }
    directory.Write("name.status", "99999999999");
    EXPECT_EQ(status.readFromFile(), 2147483647) << "saturated";
    EXPECT_EQ(status.GetStatus(), 0);
    EXPECT_TRUE(status._setStatus(AppStatus::none));
    EXPECT_EQ(status.readFromFile(), -1);

    std::error_code noLinks;
    std::filesystem::create_symlink(directory.Write("other", "kept"),
                                    directory.PathOf("name.status"), noLinks);
    EXPECT_EQ(status.writeToFile(1), bool(noLinks)) << "does not follow links";
    status._setStatus(AppStatus::none);
    std::filesystem::create_directory(directory.PathOf("name.status"));
    EXPECT_FALSE(status._setStatus(AppStatus::running)) << "a directory in its place";
    EXPECT_EQ(status.readFromFile(), -1);
    if (support::onWindows()) {
        AppStatus::SetDirectory("/run");
        EXPECT_FALSE(status.writeToFile(1));
    }
}

}  // namespace
