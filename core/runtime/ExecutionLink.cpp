#include "core/runtime/ExecutionLink.h"

namespace core {

char const* ExecutionLink::ClassName() const {
    return "ExecutionLink";
}

}  // namespace core
