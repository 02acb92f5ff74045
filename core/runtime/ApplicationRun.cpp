#include <array>

#include "core/runtime/Application.h"
#include "core/runtime/timer.h"
#include "sys/platform/Process.h"
#include "sys/scheduler.h"

namespace core {

namespace {

int const initPause = 10;         ///< ms between two calls of Init
int const longestLoopWait = 500;  ///< ms that a pass of the main loop waits at most
unsigned long long const second = 1000;

/// The wait of a pass, in ms, when the next work is due at the given tick.
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
        timerStart();
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
                // By the period, not to now: a hook that fell behind catches up, one call a pass.
                hook.last += hook.period;
                (this->*hook.call)();
                break;
            }
        }
    }
}

/// Runs the next bit that is due, if any; the tick at which the next one is.
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

}  // namespace core
