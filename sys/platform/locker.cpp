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
    if (auto* plain = std::get_if<std::mutex>(&mutex_)) {
        plain->lock();
    } else if (auto* recursive = std::get_if<std::recursive_mutex>(&mutex_)) {
        recursive->lock();
    }
}

void locker::unlock() {
    if (auto* plain = std::get_if<std::mutex>(&mutex_)) {
        plain->unlock();
    } else if (auto* recursive = std::get_if<std::recursive_mutex>(&mutex_)) {
        recursive->unlock();
    }
}

void locker::done() {
    mutex_.emplace<std::monostate>();
}

}  // namespace sys
