#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "core/runtime/Application.h"
#include "sys/scheduler.h"
#include "tests/support/StatusDirectory.h"
#include "tests/support/system.h"

namespace {

using namespace core;
using Queue = ExecutionQueueAbstract;

std::atomic<std::uint32_t> now = 10'900;

class Bit : public ExecutionBit {
public:
    explicit Bit(std::function<bool()> work, unsigned long long notBefore = 0)
        : ExecutionBit(notBefore), work_(std::move(work)) {}
    bool Execute(unsigned long long) override { return work_(); }

private:
    std::function<bool()> work_;
};

// A process has one application: each test runs it in a process of its own.
struct Worker : public Application {
    Worker() : Application("worker") {
        sys::scheduler::setTickSource([] { return now.load(); });
    }

    std::string output;
    std::vector<std::jthread> threads;

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

class Execution : public testing::Test {
    support::StatusDirectory directory_;
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

TEST_F(Execution, RunsByPriorityAndTick) {
    expectOutput("^too high high normal tick tick tick late tick tick $", [](Worker& worker) {
        ClassRef<ExecutionLink> const failing = worker.Dispatch(
            new Bit([]() -> bool { throw "not an exception class"; }), Queue::highest);
        worker.Add("late ", Queue::highest, 10'930);
        worker.Add("later ", Queue::lowest, 10'940);
        worker.Add("low ", Queue::lowest);
        ClassRef<ExecutionLink> const cancelled = worker.Add("cancelled ", Queue::normal, ~0ULL);
        cancelled->Cancel();
        auto const cancelsItself = std::make_shared<ClassRef<ExecutionLink>>();
        auto const cancel = [cancelsItself] { return (*cancelsItself)->Cancel(), true; };
        *cancelsItself = worker.Dispatch(new Bit(cancel), Queue::high);
        worker.Add("normal ", Queue::normal);
        worker.Add("too high ", static_cast<Queue::ExecutionPriority>(7));
        ClassRef<ExecutionLink> const done = worker.Add("high ", Queue::high);
        worker.Dispatch(nullptr, Queue::high);
        worker.Repeat(5, Queue::low, [&worker, done, failing, cancelled, cancelsItself] {
            bool const allDone = done->IsDone() && failing->IsDone() && cancelled->IsDone() &&
                                 (*cancelsItself)->IsDone();
            worker.output += allDone ? "tick " : "too early ";
            now += 10;
        });
    });
}

TEST_F(Execution, QueueReportsWhenTheFirstItemIsDue) {
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

TEST_F(Execution, RearmedTimerRuns) {
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
            bool const good = timerInit() && threads() == running && !timerInit();
            worker.output += good ? "good" : "bad";
        });
    });
}

TEST_F(Execution, LoopWaitsUntilTheNextItemIsDue) {
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

TEST_F(Execution, IdleHooksCatchUpOnePerPass) {
    expectOutput("^" + std::string(59, '1') + std::string(11, '5') + "XXXXX3" + "15X36$",
                 [](Worker& worker) {
                     worker.Repeat(200, Queue::normal,
                                   [pass = 0]() mutable { now = ++pass <= 100 ? 70'000 : 70'001; });
                 });
}

TEST_F(Execution, AnyThreadMayDispatchAndEndTheLoop) {
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

}  // namespace
