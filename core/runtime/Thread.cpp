#include "core/runtime/Thread.h"

#include <cerrno>
#include <new>
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
        errno = EALREADY;
        return false;
    }
    int error = 0;
    running_ = true;
    try {
        thread_ = std::thread([this] {
            sys::platform::nameThread(name_.getCString());
            Execute();
            running_ = false;
        });
    } catch (std::system_error const& failure) {
        error = failure.code().value();
    } catch (std::bad_alloc const&) {
        error = ENOMEM;
    }
    if (error == 0) {
        return true;
    }
    running_ = false;
    errno = error;
    return false;
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
