#include "core/runtime/timer.h"

#include <memory>
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
std::unique_ptr<WakeUpTimer> timer;

}  // namespace

bool timerInit() {
    return !std::exchange(armed, true);
}

void timerStart() {
    if (armed && !timer) {
        timer = std::make_unique<WakeUpTimer>();
        timer->Start();
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
