#include <array>
#include <memory>
#include <new>
#include <utility>

#include "core/runtime/Application.h"
#include "core/runtime/Thread.h"
#include "sys/platform/Process.h"
#include "sys/scheduler.h"

namespace core {

namespace {

int const initPause = 10;         ///< ms between two calls of Init
int const timerPeriod = 250;      ///< ms between two calls of TimerFunc
int const longestLoopWait = 500;  ///< ms
unsigned long long const second = 1000;

class WakeUpTimer : public Thread {
public:
    WakeUpTimer() : Thread("wake-up") {}
    ~WakeUpTimer() override {
        stop_.Signal();
        Join();
    }

protected:
    void Execute() override {
        while (stop_.Wait(timerPeriod) == Event::timedOut) {
            TimerFunc();
        }
    }

private:
    Event stop_;
};

bool isTimerArmed = false;
bool hasLoopStarted = false;
std::unique_ptr<WakeUpTimer> timer;

/// Starts the timer if it is armed and the main loop runs: many programs end before the main loop,
/// and a thread is a seventh of their start-up time. Without memory or a thread the main loop wakes
/// only every 500 ms.
void startTimer() {
    if (!isTimerArmed || !hasLoopStarted || timer) {
        return;
    }
    try {
        auto started = std::make_unique<WakeUpTimer>();
        if (started->Start()) {
            timer = std::move(started);
        }
    } catch (std::bad_alloc const&) {
        return;
    }
}

/// Returns how long to wait, in ms, if the next item is due at the given tick.
int waitUntil(unsigned long long due) {
    unsigned long long const now = sys::scheduler::getcurrtickms();
    return due >= now && due - now <= longestLoopWait ? static_cast<int>(due - now)
                                                      : longestLoopWait;
}

}  // namespace

void Application::Run() {
    mainThreadId_ = sys::platform::currentThreadId();
    applicationStatus_ = 1;
    status_._setStatus(AppStatus::initialising);
    InitOnce();
    if (Initialise()) {
        applicationStatus_ = 3;
        status_._setStatus(AppStatus::running);
        Loop();
        applicationStatus_ = 4;
        status_._setStatus(AppStatus::terminating);
        Done();
    }
    applicationStatus_ = 5;
    status_._setStatus(AppStatus::ended);
}

bool Application::Initialise() {
    while (!IsTerminationRequested()) {
        if (Init()) {
            return true;
        }
        sys::scheduler::sleepms(initPause);
        applicationStatus_ = 2;
    }
    return false;
}

void Application::Loop() {
    struct IdleHook {
        unsigned long long period;
        void (Application::*call)();
        unsigned long long last;
    };
    unsigned long long const base = sys::scheduler::getcurrtickms() / second * second;
    std::array<IdleHook, 5> hooks{{{1 * second, &Application::Idle1s, base},
                                   {5 * second, &Application::Idle5s, base},
                                   {10 * second, &Application::Idle10s, base},
                                   {30 * second, &Application::Idle30s, base},
                                   {60 * second, &Application::Idle60s, base}}};
    unsigned long long nextDue = 0;
    if (!IsTerminationRequested()) {
        hasLoopStarted = true;
        startTimer();
    }
    while (!IsTerminationRequested()) {
        if (wakeEvent_.Wait(waitUntil(nextDue)) == Event::signalled) {
            wakeEvent_.Clear();
        }
        if (IsTerminationRequested()) {
            return;
        }
        unsigned long long const now = sys::scheduler::getcurrtickms();
        nextDue = RunNextBit(now);
        for (IdleHook& hook : hooks) {
            if (now > hook.last + hook.period) {
                // Add the period instead of storing now: late hooks catch up, one in each pass.
                hook.last += hook.period;
                (this->*hook.call)();
                break;
            }
        }
    }
}

/// Runs the next due bit, if any. Returns the tick at which the one after it is due.
unsigned long long Application::RunNextBit(unsigned long long now) {
    ClassRef<ExecutionLink> item = mainQueue_.GetNextItemToSchedule();
    if (!item) {
        return mainQueue_.GetFirstExecutionTick();
    }
    mainQueue_.ScheduleItem(item, now);
    item.Set(nullptr);
    unsigned long long const next = mainQueue_.GetFirstExecutionTick();
    if (next <= now) {
        wakeEvent_.Signal();
    }
    return next;
}

bool timerInit() {
    if (std::exchange(isTimerArmed, true)) {
        return false;
    }
    startTimer();
    return true;
}

void timerDone() {
    timer.reset();
    isTimerArmed = false;
}

void TimerFunc() {
    Application::WakeLoop();
}

}  // namespace core
