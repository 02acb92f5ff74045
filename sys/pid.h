#pragma once

#include "core/text/String.h"

/// The record of a daemon's process number. Our programs run in the foreground and keep none: every
/// operation answers, truthfully, that there is no record and that nothing was done.
namespace sys::pid {

/// The file of the record: empty.
core::String getFileName(core::String const& name);
/// False: nothing is recorded, stored or cleared.
bool exists(core::String const& name, bool running);
bool store(core::String const& name, int pid);
bool clear(core::String const& name);
/// 0: no process.
int get(core::String const& name, bool running);
/// False: of no process is it known whether it runs.
bool isRunning(int pid);
bool isRunning(core::String const& name);
/// The command line of a process: empty.
core::String cmdline(int pid);
core::String cmdline(core::String const& name);

}  // namespace sys::pid
