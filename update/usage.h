#pragma once

namespace update {

/// All options, as core::Application::CommandLinePrepare takes them. -t and -i have no effect and
/// are not shown: scripts of the field still give them.
extern char const optionGrammar[];

/// Prints the usage screen.
void showUsage();

}  // namespace update
