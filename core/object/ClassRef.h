#pragma once

#include "core/object/BasicClass.h"

namespace core {

/// A counted reference to a T (a ReferenceCounted created with new), or an empty one.
/// The object lives as long as one reference holds it.
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

    /// Holds object (null: none) instead of the current one. Adds a reference to the new object,
    /// releases the current one, which is still held meanwhile, then holds the new one. So setting
    /// the object already held is safe.
    void Set(T* object) {
        if (object != nullptr) {
            object->_addRef();
        }
        if (object_ != nullptr) {
            object_->_release();
        }
        object_ = object;
    }

    /// The object held, still owned by the references; null when empty.
    T* Get() const { return object_; }
    T* operator->() const { return object_; }
    T& operator*() const { return *object_; }
    explicit operator bool() const { return object_ != nullptr; }

private:
    T* object_ = nullptr;
};

}  // namespace core
