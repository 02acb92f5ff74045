#include "core/runtime/ExecutionBit.h"

namespace core {

char const* ExecutionBit::ClassName() const {
    return "ExecutionBit";
}

}  // namespace core
