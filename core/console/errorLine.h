#pragma once

#include "core/text/String.h"

namespace core {

/// The line that reports an error, an entry of title "=" message: "*** title: message".
/// An "=" inside the message becomes ": " as well; those who read our output expect it so.
String errorLine(String const& entry);

}  // namespace core
