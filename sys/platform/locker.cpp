#include "sys/platform/locker.h"

namespace sys {

void locker::init(bool recursive) {
    if (recursive) {
        mutex_.emplace<std::recursive_mutex>();
    } else {
        mutex_.emplace<std::mutex>();
    }
}

void locker::lock() {
    std::visit([](auto& mutex) { mutex.lock(); }, mutex_);
}

void locker::unlock() {
    std::visit([](auto& mutex) { mutex.unlock(); }, mutex_);
}

void locker::done() {
    mutex_.emplace<std::mutex>();
}

}  // namespace sys
