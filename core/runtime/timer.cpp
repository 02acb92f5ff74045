#include "core/runtime/timer.h"

#include <memory>
#include <new>
#include <utility>

#include "core/runtime/Application.h"
#include "core/runtime/Event.h"
#include "core/runtime/Thread.h"

namespace core {

namespace {

int const period = 250;  ///< ms

class WakeUpTimer : public Thread {
public:
    WakeUpTimer() : Thread("wake-up") {}
    ~WakeUpTimer() override {
        stop_.Signal();
        Join();
    }

protected:
    void Execute() override {
        while (stop_.Wait(period) == Event::timedOut) {
            TimerFunc();
        }
    }

private:
    Event stop_;
};

bool armed = false;
bool isLooping = false;
std::unique_ptr<WakeUpTimer> timer;

/// Without memory or a thread for it there is no timer: the main loop then wakes every 500 ms.
void startThread() {
    try {
        auto started = std::make_unique<WakeUpTimer>();
        if (started->Start()) {
            timer = std::move(started);
        }
    } catch (std::bad_alloc const&) {
        return;
    }
}

}  // namespace

bool timerInit() {
    if (std::exchange(armed, true)) {
        return false;
    }
    if (isLooping) {
        startThread();
    }
    return true;
}

void timerStart() {
    isLooping = true;
    if (armed && !timer) {
        startThread();
    }
}

void timerDone() {
    timer.reset();
    armed = false;
}

void TimerFunc() {
    Application::WakeLoop();
}

}  // namespace core
