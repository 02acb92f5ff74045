#include "core/object/BasicClass.h"

namespace core {

char const* BasicClass::ClassName() const {
    return "BasicClass";
}

BasicClass::~BasicClass() = default;

void _deferDeletion(BasicClass* object) {
    delete object;
}

}  // namespace core
