#pragma once

#include "core/text/String.h"
#include "core/text/StringArray.h"

/// The environment of the process.
namespace sys::env {

/// The value of the variable; empty when there is none, or when it has 32767 characters or more,
/// which no system has to pass on.
core::String getEnvironmentVariable(core::String const& name);
/// Appends every entry (name, "=", value), in the environment's own order, to the list; true when
/// there was one.
bool getEnvironment(core::StringArray& list);

/// Appends the folders that programs are looked for in, as String::Split splits them, to the list;
/// true when there was one.
bool getPathDirectories(core::StringArray& list);
/// What stands between two folders of such a list.
core::String getPathListSeparator();

}  // namespace sys::env
