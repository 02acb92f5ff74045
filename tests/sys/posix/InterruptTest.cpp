#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "sys/platform/Process.h"

namespace {

std::atomic<int> calls = 0;

void pause(int ms) {
    std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

/// Sends the signals, with a pause after each, to a process whose interrupt handler does not return
/// in time, as with blocked output.
[[noreturn]] void interrupt(std::initializer_list<int> signals, int ms) {
    {
        sys::platform::InterruptHandler handler([] {
            ++calls;
            pause(60'000);
        });
        for (int const number : signals) {
            kill(getpid(), number);
            while (calls == 0) {
                pause(1);
            }
            pause(ms);
        }
        handler.EndIfInterrupted();
    }
    _exit(1);
}

TEST(Interrupt, CallsOnceAndThenEndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    for (int const number : {SIGINT, SIGTERM}) {
        // The second signal ends the process, or EndIfInterrupted does for the first one.
        int const other = number == SIGINT ? SIGTERM : SIGINT;
        EXPECT_EXIT(interrupt({number, other}, 400), testing::KilledBySignal(other), "");
        EXPECT_EXIT(interrupt({number, number}, 0), testing::KilledBySignal(number), "");
    }
    EXPECT_EXIT(
        {
            signal(SIGINT, SIG_IGN);
            {
                sys::platform::InterruptHandler const handler([] { ++calls; });
                kill(getpid(), SIGINT);
                pause(100);
                calls = calls > 0 ? 7 : 0;  // it is ignored
                kill(getpid(), SIGTERM);
                while (calls == 0) {
                    pause(1);
                }
                kill(getpid(), SIGTERM);
            }
            sys::platform::InterruptHandler const another([] { ++calls; });
            kill(getpid(), SIGTERM);
            pause(100);
            _exit(calls == 1 ? 7 : 1);
        },
        testing::ExitedWithCode(7), "");
}

}  // namespace
