#pragma once

#include <mutex>
#include <variant>

namespace sys {

/// The library's plain lock. It does nothing until init; std::lock_guard takes it.
class locker {
public:
    /// Makes the lock ready; a recursive one may be taken again by the thread that holds it.
    /// Must not be called while anybody holds the lock.
    void init(bool recursive = false);
    /// Waits until the lock is free and takes it.
    void lock();
    /// Gives the lock back; the caller must hold it.
    void unlock();
    /// Ends the lock, which nobody may hold; init makes it ready again.
    void done();

private:
    std::variant<std::monostate, std::mutex, std::recursive_mutex> mutex_;
};

}  // namespace sys
