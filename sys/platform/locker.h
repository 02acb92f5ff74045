#pragma once

#include <mutex>
#include <variant>

namespace sys {

/// A lock, plain until init makes it recursive; std::lock_guard accepts it.
class locker {
public:
    /// Makes it a plain or a recursive lock; its owner may lock a recursive one again. No thread
    /// may own the lock meanwhile.
    void init(bool recursive = false) {
        if (recursive) {
            mutex_.emplace<std::recursive_mutex>();
        } else {
            mutex_.emplace<std::mutex>();
        }
    }
    /// Waits until the lock is free and locks it.
    void lock() {
        std::visit([](auto& mutex) { mutex.lock(); }, mutex_);
    }
    /// Unlocks; the calling thread must own the lock.
    void unlock() {
        std::visit([](auto& mutex) { mutex.unlock(); }, mutex_);
    }
    /// Makes it a plain lock again. No thread may own the lock.
    void done() { init(); }

private:
    std::variant<std::mutex, std::recursive_mutex> mutex_;
};

}  // namespace sys
