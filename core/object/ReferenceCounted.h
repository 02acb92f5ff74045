#pragma once

namespace core {

/// A reference-counted object, deleted when its last reference is released. The count starts at 0;
/// the first ClassRef raises it to 1. Create objects for a ClassRef with new, never on the stack or
/// as members. Thread-safe: a process-wide recursive lock guards all counts.
class ReferenceCounted {
public:
    ReferenceCounted();
    /// A copy starts without references.
    ReferenceCounted(ReferenceCounted const& other);
    /// Assignment keeps the references to either object.
    ReferenceCounted& operator=(ReferenceCounted const& other);
    virtual ~ReferenceCounted();

    /// Adds a reference. Returns the new count.
    virtual int _addRef();
    /// Releases a reference, deleting the object with the last one. Returns the new count; without
    /// references, does nothing and returns 0.
    virtual int _release();
    /// Returns the number of references.
    virtual int _getRefCount() const;

    /// Called with the new count after a reference is added or released. Must not block: the lock
    /// is held.
    virtual void _addRefCalled(int count);
    virtual void _releaseCalled(int count);

private:
    int count_ = 0;
};

/// Adds or removes a user of the reference lock, which exists while it has users. Every
/// ReferenceCounted is one.
void _initReferenceMutex();
void _doneReferenceMutex();

/// Deletes the object at once, despite the name; ignores null.
void _deferDeletion(ReferenceCounted* object);

}  // namespace core
