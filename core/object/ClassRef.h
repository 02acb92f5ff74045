#pragma once

#include "core/object/BasicClass.h"

namespace core {

/// A counted reference to a T, a ReferenceCounted created with new, or an empty reference. Deletes
/// the object with the last reference to it.
template <class T>
class ClassRef : public BasicClass {
public:
    ClassRef() = default;
    ClassRef(T* object) { Set(object); }
    ClassRef(ClassRef const& other) : ReferenceCounted(), BasicClass() { Set(other.object_); }
    ~ClassRef() override { Set(nullptr); }

    ClassRef& operator=(ClassRef const& other) {
        Set(other.object_);
        return *this;
    }
    ClassRef& operator=(T* object) {
        Set(object);
        return *this;
    }

    char const* ClassName() const override { return "ClassRef"; }

    /// Replaces the referenced object; null makes the reference empty. Adds a reference to the new
    /// object before it releases the current one, so that setting the current object is safe. While
    /// the current one is released, Get() still returns it.
    void Set(T* object) {
        if (object != nullptr) {
            object->_addRef();
        }
        if (object_ != nullptr) {
            object_->_release();
        }
        object_ = object;
    }

    /// Returns the object, owned by its references, or null if empty.
    T* Get() const { return object_; }
    T* operator->() const { return object_; }
    T& operator*() const { return *object_; }
    explicit operator bool() const { return object_ != nullptr; }

private:
    T* object_ = nullptr;
};

}  // namespace core
