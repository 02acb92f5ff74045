#pragma once

namespace update {

/// Prints the usage screen.
void showUsage();

}  // namespace update
