#pragma once

namespace pack {

/// All options, as core::Application::CommandLinePrepare takes them.
extern char const optionGrammar[];

/// Prints what the program takes on its command line.
void showUsage();

}  // namespace pack
