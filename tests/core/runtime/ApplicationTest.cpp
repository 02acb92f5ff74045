#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "core/runtime/Application.h"
#include "core/runtime/CountDownTimer.h"
#include "sys/platform/Process.h"
#include "sys/scheduler.h"
#include "tests/support/StatusDirectory.h"
#include "tests/support/system.h"

namespace {

using namespace core;
using Queue = ExecutionQueueAbstract;

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

    static bool IsIdle(String const& name) {
        return AppName() == name && !IsTerminationRequested() && !IsTerminated() && !IsADaemon() &&
               !IsUsingSysLog() && ProcessID() == 0 && SessionID() == 0;
    }
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
        bool const none = TestedApplication::IsIdle("GApplication == nil") &&
                          Application::Instance() == nullptr && Application::MainThreadID() == 0;
        Application::RequestTermination(Application::normalRequest);
        Application::WakeLoop();
        StringArray grammar;
        StringArray errors;
        String("h|help=0>g|grow=0").Split(grammar, '>');
        auto const add = [&](char const* key, char const* values) {
            return Application::AddToArguments(key, values, grammar, errors);
        };
        bool const onlyChecked = add("h|", "") == -1 && errors.Count() == 0 &&
                                 add("x|", "") + add("h|", "x") == -2 && errors.Count() == 2;
        TestedApplication tested;
        bool const stored = add("h|", "") == 0 && add("g|", "") == 1 && add("g|", "") == 1;
        return none && onlyChecked && stored && tested.FindOption("help") &&
               TestedApplication::IsIdle("tested") && Application::Instance() == &tested &&
               tested.FulfillTerminationRequest() == 0 && !tested.Daemonize("tested") &&
               tested._addRef() + tested._release() == 0 &&
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

std::atomic<std::uint32_t> now = 10'900;

class Bit : public ExecutionBit {
public:
    explicit Bit(std::function<bool()> work, unsigned long long notBefore = 0)
        : ExecutionBit(notBefore), work_(std::move(work)) {}
    bool Execute(unsigned long long) override { return work_(); }

private:
    std::function<bool()> work_;
};

struct Worker : public Application {
    Worker() : Application("worker") {
        sys::scheduler::setTickSource([] { return now.load(); });
    }

    std::string output;
    std::vector<std::jthread> threads;
    std::vector<ClassRef<ExecutionLink>> links;

    ClassRef<ExecutionLink> Add(char const* word, Queue::ExecutionPriority priority,
                                unsigned long long notBefore = 0) {
        auto const work = [this, word] { return output += word, false; };
        return Dispatch(new Bit(work, notBefore), priority);
    }
    /// Runs work in the given number of passes of the loop, then ends the loop.
    void Repeat(int passes, Queue::ExecutionPriority priority, std::function<void()> const& work) {
        auto const pass = [work, left = passes]() mutable {
            work();
            if (--left == 0) {
                RequestTermination(normalRequest);
            }
            return true;
        };
        Dispatch(new Bit(pass), priority);
    }
    void Idle1s() override { output += "1"; }
    void Idle5s() override { output += "5"; }
    void Idle10s() override { output += "X"; }
    void Idle30s() override { output += "3"; }
    void Idle60s() override { output += "6"; }
};

/// Expects the output of a worker that runs the bits dispatched by prepare.
void expectOutput(std::string const& output, std::function<void(Worker&)> const& prepare) {
    EXPECT_EXIT(
        {
            Worker worker;
            prepare(worker);
            worker.Run();
            worker.threads.clear();
            std::fputs(worker.output.c_str(), stderr);
            std::exit(7);
        },
        testing::ExitedWithCode(7), output);
}

TEST_F(ApplicationRun, RunsBitsByPriorityAndTick) {
    expectOutput("^too high high normal tick tick tick late tick tick $", [](Worker& worker) {
        auto& links = worker.links;
        auto const fail = []() -> bool { throw "not an exception class"; };
        auto const cancelItself = [&links] { return links[1]->Cancel(), true; };
        links = {worker.Dispatch(new Bit(fail), Queue::highest),
                 worker.Dispatch(new Bit(cancelItself), Queue::high),
                 worker.Add("cancelled ", Queue::normal, ~0ULL)};
        links[2]->Cancel();
        worker.Add("late ", Queue::highest, 10'930);
        worker.Add("later ", Queue::lowest, 10'940);
        worker.Add("low ", Queue::lowest);
        worker.Add("normal ", Queue::normal);
        worker.Add("too high ", static_cast<Queue::ExecutionPriority>(7));
        links.push_back(worker.Add("high ", Queue::high));
        worker.Dispatch(nullptr, Queue::high);
        worker.Repeat(5, Queue::low, [&worker] {
            for (auto const& link : worker.links) {
                worker.output += link->IsDone() ? "" : "not done ";
            }
            worker.output += "tick ";
            now += 10;
        });
    });
}

TEST_F(ApplicationRun, QueueReportsWhenTheFirstItemIsDue) {
    struct Queued : public Queue {
        void ScheduleItem(ClassRef<ExecutionLink> const&, unsigned long long) override {}
        void Dispatched() override {}
    } queue;
    sys::scheduler::setTickSource([] { return now.load(); });
    EXPECT_EQ(queue.GetFirstExecutionTick(), ~0ULL);
    queue.Dispatch(new Bit(nullptr, now + 70), Queue::high);
    auto const item = queue.Dispatch(new Bit(nullptr, now + 50), Queue::low);
    EXPECT_EQ(queue.GetFirstExecutionTick(), now + 50);
    EXPECT_FALSE(queue.GetNextItemToSchedule());
    now += 50;
    EXPECT_EQ(queue.GetFirstExecutionTick(), 0u);
    EXPECT_EQ(queue.GetNextItemToSchedule().Get(), item.Get());
    EXPECT_STREQ(queue.ClassName(), "ExecutionQueueAbstract");
    EXPECT_STREQ(item->ClassName(), "ExecutionLink");
    EXPECT_FALSE(item->IsDone());
    EXPECT_STREQ(item->Bit()->ClassName(), "ExecutionBit");
    sys::scheduler::setTickSource(nullptr);
}

TEST_F(ApplicationRun, RearmedTimerRuns) {
    expectOutput("^good$", [](Worker& worker) {
        auto const threads = [] {
            std::filesystem::directory_iterator const list(
                support::onWindows() ? "." : "/proc/self/task");
            return std::distance(list, std::filesystem::directory_iterator());
        };
        worker.Repeat(1, Queue::normal, [&worker, threads] {
            auto const running = threads();
            timerDone();
            while (threads() >= running && !support::onWindows()) {
                sys::scheduler::sleepms(1);
            }
            worker.output = timerInit() && threads() == running && !timerInit() ? "good" : "bad";
        });
    });
}

TEST_F(ApplicationRun, LoopWaitsUntilTheNextItemIsDue) {
    // The tick stands still, so each pass waits 1 ms for the item and reads the tick three times.
    auto const start = std::chrono::steady_clock::now();
    expectOutput("^$", [](Worker& worker) {
        worker.Add("never ", Queue::normal, now + 1);
        sys::scheduler::setTickSource([] {
            static std::atomic<int> reads = 0;
            if (++reads == 400) {
                Application::RequestTermination(Application::normalRequest);
            }
            return now.load();
        });
    });
    std::chrono::duration<double> const seconds = std::chrono::steady_clock::now() - start;
    EXPECT_TRUE(seconds.count() > 0.1 && seconds.count() < 5) << seconds.count();
}

TEST_F(ApplicationRun, IdleHooksCatchUpOnePerPass) {
    expectOutput("^" + std::string(59, '1') + std::string(11, '5') + "XXXXX3" + "15X36$",
                 [](Worker& worker) {
                     worker.Repeat(200, Queue::normal,
                                   [pass = 0]() mutable { now = ++pass <= 100 ? 70'000 : 70'001; });
                 });
}

TEST_F(ApplicationRun, AnyThreadMayDispatchAndEndTheLoop) {
    expectOutput("^" + std::string(400, 'x') + "$", [](Worker& worker) {
        auto const count = [&worker] {
            worker.output += 'x';
            if (worker.output.size() == 400) {
                Application::RequestTermination(Application::normalRequest);
            }
            return false;
        };
        for (int t = 0; t < 4; ++t) {
            worker.threads.emplace_back([&worker, count] {
                for (int i = 0; i < 100; ++i) {
                    worker.Dispatch(new Bit(count), Queue::normal);
                }
            });
        }
    });
}

TEST(AppStatus, WritesAndReadsTheNumber) {
    support::StatusDirectory const directory;
    AppStatus const status("name");
    EXPECT_STREQ(status.ClassName(), "AppStatus");
    EXPECT_STREQ(Event().ClassName(), "Event");
    EXPECT_STREQ(status.getFilePath().getCString(), (directory.Path() + "/name.status").c_str());
    EXPECT_EQ(status.readFromFile() + status.GetStatus(), -2);
    EXPECT_FALSE(status._setStatus(AppStatus::none));
    for (auto const number : {AppStatus::constructed, AppStatus::ended}) {
        EXPECT_TRUE(status._setStatus(number));
        EXPECT_EQ(status.GetStatus(), number);
    }
    EXPECT_TRUE(status.writeToFile(7) && status.readFromFile() == 7 && status.GetStatus() == 0);
    for (char const* const content : {"", "x", "3x", "-", "\n"}) {
        directory.Write("name.status", content);
        EXPECT_EQ(status.readFromFile(), -1) << content;
    }
    directory.Write("name.status", "99999999999");
    EXPECT_EQ(status.readFromFile(), 2147483647) << "saturated";
    EXPECT_EQ(status.GetStatus(), 0);
    EXPECT_TRUE(status._setStatus(AppStatus::none) && status.readFromFile() == -1);

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
