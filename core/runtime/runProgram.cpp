#include "core/runtime/runProgram.h"

#include <new>

#include "core/console/Console.h"

namespace core {

Fault faultFromException(std::exception const& exception) {
    if (dynamic_cast<std::bad_alloc const*>(&exception) != nullptr) {
        return fault("Out of memory", "The system has no more memory for the program");
    }
    return fault("System failure", "%1", exception.what());
}

void printException(std::exception const& exception) {
    Console::write(faultLine(faultFromException(exception)), true);
}

}  // namespace core
