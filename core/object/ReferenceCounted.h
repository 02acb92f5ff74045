#pragma once

namespace core {

/// An object that counts its holders and deletes itself when the last one lets go.
/// One created with new starts at 0; the first ClassRef raises it to 1. Objects on the stack or
/// embedded as members are never handed to a ClassRef. Counts may change on any thread: one
/// process-wide recursive lock serialises them all.
class ReferenceCounted {
public:
    ReferenceCounted();
    /// A copy is an object of its own: it starts without holders.
    ReferenceCounted(ReferenceCounted const& other);
    /// Assigning changes nobody's holders.
    ReferenceCounted& operator=(ReferenceCounted const& other);
    virtual ~ReferenceCounted();

    /// Adds a holder; returns the new count.
    virtual int _addRef();
    /// Takes a holder away and deletes the object with the last one; returns the new count.
    /// An object without holders stays as it is: the result is 0.
    virtual int _release();
    virtual int _getRefCount() const;

    /// Told the new count, inside the lock: must not block.
    virtual void _addRefCalled(int count);
    virtual void _releaseCalled(int count);

private:
    int count_ = 0;
};

/// Add or drop a user of the reference lock, which exists while there is one. Every
/// ReferenceCounted is a user.
void _initReferenceMutex();
void _doneReferenceMutex();

/// Deletes the object at once (nothing is deferred in this system); null is ignored.
void _deferDeletion(ReferenceCounted* object);

}  // namespace core
