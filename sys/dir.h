#pragma once

#include "core/text/String.h"

/// Folders by their path. An int result is 0 or a negative error code: an errno value with its sign
/// changed.
namespace sys::dir {

/// Sets the working folder, which relative paths begin in, for the whole process.
int change(core::String const& path);
/// The absolute path of the working folder; empty when there is none any more.
core::String current();

/// Makes a folder. With recursive all missing parents are made too, and a folder that is there
/// already is as good as a new one; without, it is an error (-EEXIST). A file in the way of
/// recursive gives -ENOTDIR. After a failure the parents made so far stay.
int create(core::String const& path, bool recursive);

}  // namespace sys::dir
