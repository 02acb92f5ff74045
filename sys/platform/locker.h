#pragma once

#include <mutex>

namespace sys {

/// A lock, plain until init makes it recursive; std::lock_guard accepts it.
class locker {
public:
    /// Makes it a plain or a recursive lock; its owner may lock a recursive one again. No thread
    /// may own the lock meanwhile.
    void init(bool recursive = false) { isRecursive_ = recursive; }
    /// Waits until the lock is free and locks it.
    void lock() {
        if (isRecursive_) {
            recursive_.lock();
        } else {
            plain_.lock();
        }
    }
    /// Unlocks; the calling thread must own the lock.
    void unlock() {
        if (isRecursive_) {
            recursive_.unlock();
        } else {
            plain_.unlock();
        }
    }
    /// Makes it a plain lock again. No thread may own the lock.
    void done() { init(); }

private:
    std::mutex plain_;
    std::recursive_mutex recursive_;
    bool isRecursive_ = false;
};

}  // namespace sys
