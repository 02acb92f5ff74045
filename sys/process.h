#pragma once

#include "core/text/String.h"
#include "core/text/StringArray.h"

/// The environment of the process.
namespace sys::env {

/// Returns the value of a variable; empty if there is none, or if it has 32767 characters or more,
/// which not every platform supports.
core::String getEnvironmentVariable(core::String const& name);
/// Appends every variable to the list, as "name=value" and in the environment's own order. Returns
/// true if there was one.
bool getEnvironment(core::StringArray& list);

/// Returns the absolute path of the running program, without links; empty if it is unknown.
core::String getProgramPath();

/// Appends the directories that the operating system searches for programs to the list, as
/// String::Split splits them. Returns true if there was one.
bool getPathDirectories(core::StringArray& list);
/// Returns the separator of two directories of such a list.
core::String getPathListSeparator();

}  // namespace sys::env

/// Shell commands and system services. Not supported: passing strings to a shell would expose the
/// machine to command injection. Every command fails with -1.
namespace sys::cmd {

enum ServiceOp : int { start = 0, stop = 1, restart = 2 };

/// Returns -1. output names the file for the command's output.
int command(core::String const& line, bool wait, core::String const& output);
/// Returns -1, or 0 for an empty list.
int commands(core::StringArray const& lines, bool wait, core::String const& output);
/// Run without waiting for the end: see command and commands.
int background(core::String const& line, core::String const& output);
int background(core::StringArray const& lines, core::String const& output);

/// Returns the command line that applies op to a service, such as "service NAME start"; empty for
/// any other op.
core::String serviceLine(core::String const& name, ServiceOp op);
/// Passes that line to command; returns -1 for any other op.
int service(core::String const& name, ServiceOp op, core::String const& output);
/// Calls service for each name. Returns -1, or 0 for an empty list.
int services(core::StringArray const& names, ServiceOp op, core::String const& output);

}  // namespace sys::cmd

/// The record of a daemon's process number. Not supported, because the programs run in the
/// foreground: there never is a record, and nothing is stored.
namespace sys::pid {

/// Returns the empty file name.
core::String getFileName(core::String const& name);
/// Return false: nothing is recorded, stored or cleared.
bool exists(core::String const& name, bool running);
bool store(core::String const& name, int pid);
bool clear(core::String const& name);
/// Returns 0: no process.
int get(core::String const& name, bool running);
/// Return false: no process is known to run.
bool isRunning(int pid);
bool isRunning(core::String const& name);
/// Return the empty command line.
core::String cmdline(int pid);
core::String cmdline(core::String const& name);

}  // namespace sys::pid
