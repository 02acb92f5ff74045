#pragma once

#include "core/text/String.h"

/// Questions about files by path, and small files in one call. Nothing here throws or prints.
namespace sys::file {

/// True when path is a regular file that can be opened for reading. A folder is none, nor is a
/// pipe or a device: their size says nothing about what can be read from them.
bool exists(core::String const& path);

/// The size in bytes, or the negative error code of opening the file or reading its status.
long long getFileSize(core::String const& path);

/// The CRC-32 of the whole file. 0 when it cannot be opened, as for an empty one; a read error
/// ends the sum where it happened. Callers that must tell these apart ask exists and getFileSize.
unsigned int calculatesCRC32(core::String const& path);

/// Deletes the file: 0, or a negative error code.
int remove(core::String const& path);

/// The whole file as text, which ends at its first NUL; empty when it cannot be read.
core::String getFileContents(core::String const& path);

/// Writes text into the file, which is made when it is missing: 0, or the negative error code of
/// the open or of the failing write. With truncate the text becomes the whole content; without, it
/// replaces the start and a longer old content keeps its tail.
int setFileContents(core::String const& path, core::String const& text, bool truncate);

}  // namespace sys::file
