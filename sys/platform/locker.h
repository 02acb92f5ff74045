#pragma once

#include <mutex>
#include <variant>

namespace sys {

/// A lock, plain until init makes it recursive; std::lock_guard accepts it.
class locker {
public:
    /// Makes it a plain or a recursive lock; its owner may lock a recursive one again. No thread
    /// may own the lock meanwhile.
    void init(bool recursive = false);
    /// Waits until the lock is free and locks it.
    void lock();
    /// Unlocks; the calling thread must own the lock.
    void unlock();
    /// Makes it a plain lock again. No thread may own the lock.
    void done();

private:
    std::variant<std::mutex, std::recursive_mutex> mutex_;
};

}  // namespace sys
