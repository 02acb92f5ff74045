#include "core/console/Console.h"
#include "core/text/String.h"

namespace core {

void String::print(bool newLine) const {
    Console::write(*this, newLine);
}

}  // namespace core
