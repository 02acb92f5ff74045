#pragma once

#include "core/text/String.h"

namespace core {

/// The platform's text for an error number, at most 2048 bytes.
String errnoDescription(int number);

}  // namespace core
