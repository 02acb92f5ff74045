#include <array>

#include "core/runtime/Application.h"
#include "sys/platform/Process.h"
#include "sys/scheduler.h"

namespace core {

namespace {

int const initPause = 10;         ///< ms between two calls of Init
int const longestLoopWait = 500;  ///< ms that a pass of the main loop waits at most
unsigned long long const second = 1000;

}  // namespace

void Application::Run() {
    mainThreadId_ = sys::platform::currentThreadId();
    status_._setStatus(AppStatus::initialising);
    InitOnce();
    if (Initialise()) {
        status_._setStatus(AppStatus::running);
        Loop();
        status_._setStatus(AppStatus::terminating);
        Done();
    }
    status_._setStatus(AppStatus::ended);
}

bool Application::Initialise() {
    while (!IsTerminationRequested()) {
        if (Init()) {
            return true;
        }
        sys::scheduler::sleepms(initPause);
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
    while (!IsTerminationRequested()) {
        if (wakeEvent_.Wait(longestLoopWait) == Event::signalled) {
            wakeEvent_.Clear();
        }
        if (IsTerminationRequested()) {
            return;
        }
        unsigned long long const now = sys::scheduler::getcurrtickms();
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

}  // namespace core
