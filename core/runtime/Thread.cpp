#include "core/runtime/Thread.h"

#include <system_error>

#include "sys/platform/Process.h"

namespace core {

Thread::Thread(String const& name) : name_(name) {}

Thread::~Thread() {
    Join();
}

char const* Thread::ClassName() const {
    return "Thread";
}

bool Thread::Start() {
    if (thread_.joinable()) {
        return false;
    }
    running_ = true;
    try {
        thread_ = std::thread([this] {
            sys::platform::nameThread(name_.getCString());
            Execute();
            running_ = false;
        });
    } catch (std::system_error const&) {
        running_ = false;
    }
    return thread_.joinable();
}

void Thread::RequestTermination() {
    terminationRequested_ = true;
}

void Thread::Join() {
    if (thread_.joinable()) {
        thread_.join();
    }
}

}  // namespace core
