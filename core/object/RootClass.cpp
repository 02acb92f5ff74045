#include "core/object/RootClass.h"

namespace core {

char const* RootClass::ClassName() const {
    return "RootClass";
}

RootClass::~RootClass() = default;

}  // namespace core
