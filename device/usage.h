#pragma once

namespace device {

/// Prints what the program takes on its command line.
void showUsage();

}  // namespace device
