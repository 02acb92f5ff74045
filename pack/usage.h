#pragma once

namespace pack {

/// Prints what the program takes on its command line.
void showUsage();

}  // namespace pack
