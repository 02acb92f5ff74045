#include "sys/platform/InterruptWatch.h"

#include <windows.h>

#include <mutex>
#include <utility>

namespace sys::platform {

namespace {

std::mutex oneAtATime;
void (*pending)() = nullptr;  ///< the function still to be called
bool interrupted = false;

/// The system calls it on a thread that it creates for the call.
BOOL WINAPI notice(DWORD event) {
    {
        std::lock_guard const locked(oneAtATime);
        if (pending == nullptr) {
            return FALSE;
        }
        interrupted = true;
        std::exchange(pending, nullptr)();
    }
    if (event == CTRL_CLOSE_EVENT) {
        // The process ends when this returns, and at the latest some seconds from now.
        Sleep(INFINITE);
    }
    return TRUE;
}

}  // namespace

struct InterruptWatch::State {};

InterruptWatch::InterruptWatch(void (*act)()) {
    std::lock_guard const locked(oneAtATime);
    pending = act;
    SetConsoleCtrlHandler(&notice, TRUE);
}

InterruptWatch::~InterruptWatch() {
    SetConsoleCtrlHandler(&notice, FALSE);
    std::lock_guard const locked(oneAtATime);
    pending = nullptr;
}

void InterruptWatch::EndIfInterrupted() {
    std::lock_guard const locked(oneAtATime);
    if (interrupted) {
        // The exit status that the system's own handler sets.
        ExitProcess(STATUS_CONTROL_C_EXIT);
    }
}

}  // namespace sys::platform
