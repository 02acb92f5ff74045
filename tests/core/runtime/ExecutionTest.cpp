#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "core/runtime/Application.h"
#include "core/runtime/timer.h"
#include "sys/scheduler.h"
#include "tests/support/StatusDirectory.h"
#include "tests/support/system.h"

namespace {

using namespace core;
using Queue = ExecutionQueueAbstract;

std::atomic<std::uint32_t> now = 10'000;

class Bit : public ExecutionBit {
public:
    explicit Bit(std::function<bool()> work, unsigned long long notBefore = 0)
        : ExecutionBit(notBefore), work_(std::move(work)) {}
    bool Execute(unsigned long long) override { return work_(); }

private:
    std::function<bool()> work_;
};

// An application ends with its process: each runs in a process of its own.
struct Worker : public Application {
    Worker() : Application("worker") {
        sys::scheduler::setTickSource([] { return now.load(); });
    }

    std::string story;
    std::vector<std::jthread> threads;

    ClassRef<ExecutionLink> Add(char const* word, Queue::ExecutionPriority priority,
                                unsigned long long notBefore = 0) {
        auto const work = [this, word] { return story += word, false; };
        return Dispatch(new Bit(work, notBefore), priority);
    }
    /// Runs work in so many passes of the loop and ends it.
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
    void Idle1s() override { story += "1"; }
    void Idle5s() override { story += "5"; }
    void Idle10s() override { story += "X"; }
    void Idle30s() override { story += "3"; }
    void Idle60s() override { story += "6"; }
};

class Execution : public testing::Test {
    support::StatusDirectory directory_;
};

/// Expects the story of a worker that runs what was prepared.
void expectStory(std::string const& story, std::function<void(Worker&)> const& prepare) {
    EXPECT_EXIT(
        {
            Worker worker;
            prepare(worker);
            worker.Run();
            worker.threads.clear();
            std::fputs(worker.story.c_str(), stderr);
            std::exit(7);
        },
        testing::ExitedWithCode(7), story);
}

TEST_F(Execution, ByPriorityAndTick) {
    expectStory("^too high high normal tick tick tick late tick tick $", [](Worker& worker) {
        ClassRef<ExecutionLink> const failing = worker.Dispatch(
            new Bit([]() -> bool { throw "not an exception class"; }), Queue::highest);
        worker.Add("late ", Queue::highest, 10'030);
        worker.Add("later ", Queue::lowest, 10'040);
        worker.Add("low ", Queue::lowest);
        worker.Add("cancelled ", Queue::normal)->Cancel();
        worker.Add("normal ", Queue::normal);
        worker.Add("too high ", static_cast<Queue::ExecutionPriority>(7));
        ClassRef<ExecutionLink> const done = worker.Add("high ", Queue::high);
        worker.Dispatch(nullptr, Queue::high);
        worker.Repeat(5, Queue::low, [&worker, done, failing] {
            worker.story += done->IsDone() && failing->IsDone() ? "tick " : "too early ";
            now += 10;
        });
    });
}

TEST_F(Execution, QueuesReportWhenTheirFirstItemIsDue) {
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

TEST_F(Execution, ATimerThatIsArmedAgainRuns) {
    expectStory("^good$", [](Worker& worker) {
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
            bool const good = timerInit() && threads() == running && !timerInit();
            worker.story += good ? "good" : "bad";
        });
    });
}

TEST_F(Execution, IdleHooksCatchUpOneAPass) {
    expectStory("^" + std::string(59, '1') + std::string(11, '5') + "XXXXX3" + "15X36$",
                [](Worker& worker) {
                    worker.Repeat(200, Queue::normal,
                                  [pass = 0]() mutable { now = ++pass <= 100 ? 70'000 : 70'001; });
                });
}

TEST_F(Execution, AnyThreadDispatchesAndEndsTheLoop) {
    expectStory("^" + std::string(400, 'x') + "$", [](Worker& worker) {
        auto const count = [&worker] {
            worker.story += 'x';
            if (worker.story.size() == 400) {
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

}  // namespace
