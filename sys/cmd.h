#pragma once

#include "core/text/String.h"
#include "core/text/StringArray.h"

/// Shell commands and system services. An updater that handed texts to a shell would be one more
/// way into the machine it runs on, so nothing is ever run: the answer is -1 wherever there was
/// something to run.
namespace sys::cmd {

enum ServiceOp : int { start = 0, stop = 1, restart = 2 };

/// -1; output would be the file that takes what the command writes.
int command(core::String const& line, bool wait, core::String const& output);
/// -1, or 0 for an empty list.
int commands(core::StringArray const& lines, bool wait, core::String const& output);
/// The same without waiting for an end.
int background(core::String const& line, core::String const& output);
int background(core::StringArray const& lines, core::String const& output);

/// The command line that does op to a service, "service NAME start"; empty for any other op.
core::String serviceLine(core::String const& name, ServiceOp op);
/// Hands that line to command; -1 for any other op.
int service(core::String const& name, ServiceOp op, core::String const& output);
/// The same for each name: -1, or 0 for an empty list.
int services(core::StringArray const& names, ServiceOp op, core::String const& output);

}  // namespace sys::cmd
