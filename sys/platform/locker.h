#pragma once

#include <mutex>
#include <variant>

namespace sys {

/// The library's lock, a plain one until init chooses; std::lock_guard accepts it.
class locker {
public:
    /// Makes it a plain or a recursive lock, which the thread that holds it may lock again.
    /// No thread may hold the lock meanwhile.
    void init(bool recursive = false);
    /// Waits until the lock is free and takes it.
    void lock();
    /// Gives the lock back; the caller must hold it.
    void unlock();
    /// Makes it a plain lock again. No thread may hold it.
    void done();

private:
    std::variant<std::mutex, std::recursive_mutex> mutex_;
};

}  // namespace sys
