#include "core/object/ReferenceCounted.h"

#include <mutex>

#include "core/object/BasicClass.h"
#include "core/object/RootClass.h"
#include "sys/platform/locker.h"

namespace core {

namespace {

constexpr bool recursive = true;

struct ReferenceLock {
    sys::locker counts;
    sys::locker guard;
    unsigned users = 0;

    ReferenceLock() { guard.init(recursive); }
};

/// Returns the lock, which is never destroyed: static objects may change references at exit.
ReferenceLock& referenceLock() {
    static auto& lock = *new ReferenceLock;
    return lock;
}

}  // namespace

void _initReferenceMutex() {
    ReferenceLock& lock = referenceLock();
    std::lock_guard guarded(lock.guard);
    if (lock.users++ == 0) {
        lock.counts.init(recursive);
    }
}

void _doneReferenceMutex() {
    ReferenceLock& lock = referenceLock();
    std::lock_guard guarded(lock.guard);
    if (--lock.users == 0) {
        lock.counts.done();
    }
}

ReferenceCounted::ReferenceCounted() {
    _initReferenceMutex();
}

ReferenceCounted::ReferenceCounted(ReferenceCounted const&) {
    _initReferenceMutex();
}

ReferenceCounted& ReferenceCounted::operator=(ReferenceCounted const&) {
    return *this;
}

ReferenceCounted::~ReferenceCounted() {
    _doneReferenceMutex();
}

int ReferenceCounted::_addRef() {
    std::lock_guard guarded(referenceLock().counts);
    ++count_;
    _addRefCalled(count_);
    return count_;
}

int ReferenceCounted::_release() {
    int count = 0;
    {
        std::lock_guard guarded(referenceLock().counts);
        if (count_ < 1) {
            return 0;
        }
        count = --count_;
        _releaseCalled(count);
    }
    if (count == 0) {
        delete this;
    }
    return count;
}

int ReferenceCounted::_getRefCount() const {
    std::lock_guard guarded(referenceLock().counts);
    return count_;
}

void ReferenceCounted::_addRefCalled(int /*count*/) {}

void ReferenceCounted::_releaseCalled(int /*count*/) {}

void _deferDeletion(ReferenceCounted* object) {
    delete object;
}

char const* BasicClass::ClassName() const {
    return "BasicClass";
}

BasicClass::~BasicClass() = default;

void _deferDeletion(BasicClass* object) {
    delete object;
}

char const* RootClass::ClassName() const {
    return "RootClass";
}

RootClass::~RootClass() = default;

}  // namespace core
