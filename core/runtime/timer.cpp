#include "core/runtime/timer.h"

#include <memory>

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

std::unique_ptr<WakeUpTimer> timer;

}  // namespace

bool timerInit() {
    if (timer) {
        return false;
    }
    timer = std::make_unique<WakeUpTimer>();
    if (!timer->Start()) {
        timer.reset();
    }
    return timer != nullptr;
}

void timerDone() {
    timer.reset();
}

void TimerFunc() {
    Application::WakeLoop();
}

}  // namespace core
