#pragma once

#include "core/object/ReferenceCounted.h"

namespace core {

/// Base of the library's shared objects: a class name and, through ReferenceCounted, holders.
class BasicClass : public virtual ReferenceCounted {
public:
    /// The bare name of the class; a constant text that nobody frees.
    virtual char const* ClassName() const;
    ~BasicClass() override;
};

/// Deletes the object at once (nothing is deferred in this system); null is ignored.
void _deferDeletion(BasicClass* object);

}  // namespace core
