#include "core/console/errorLine.h"

namespace core {

String errorLine(String const& entry) {
    return String::format("*** %1").argi(1, entry.Replace("=", ": "));
}

}  // namespace core
