#pragma once

#include "core/object/ReferenceCounted.h"

namespace core {

/// Base of the library's shared objects: a class name and a reference count.
class BasicClass : public virtual ReferenceCounted {
public:
    /// Returns the unqualified class name, a static string.
    virtual char const* ClassName() const;
    ~BasicClass() override;
};

/// Deletes the object at once, despite the name; ignores null.
void _deferDeletion(BasicClass* object);

}  // namespace core
