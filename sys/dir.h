#pragma once

#include "core/text/String.h"

/// Directories by path. An int result is 0 or a negative errno value.
namespace sys::dir {

/// Sets the working directory of the whole process, where relative paths start.
int change(core::String const& path);
/// Returns the absolute path of the working directory; empty if it no longer exists.
core::String current();

/// Creates a directory. With recursive, creates missing parents too and accepts an existing
/// directory; otherwise that is an error (-EEXIST). With recursive, a file in the path gives
/// -ENOTDIR. After a failure, parents created until then remain.
int create(core::String const& path, bool recursive);

}  // namespace sys::dir
