#pragma once

#include "core/stream/ICopyCallback.h"
#include "core/text/String.h"
#include "core/text/StringArray.h"
#include "sys/platform/Files.h"

namespace core {
class FileStream;
class MemoryStream;
}  // namespace core

/// Files by path: queries, whole contents in one call, copying, moving, finding. Nothing here
/// throws or prints. An int result is 0 or a negative errno value. Whole-file reads need a regular
/// file (-ENOTSUP): a device may be endless.
namespace sys::file {

/// The status of a file, as HandleStream::Stat returns it.
using stats = platform::FileStatus;
using Type = platform::FileType;

// Queries

/// Whether path is a regular file that can be opened for reading. A directory, pipe or device is
/// not: its size does not limit what can be read from it.
bool exists(core::String const& path);
/// Returns the size in bytes, or the negative errno value of opening the file or reading its
/// status.
long long getFileSize(core::String const& path);
/// Returns the CRC-32 of the whole file; 0 if it cannot be opened, as for an empty file. A read
/// error ends the calculation: to detect errors, use the other overload.
unsigned int calculatesCRC32(core::String const& path);
/// Stores the CRC-32 and returns 0 if the whole file was read, otherwise a negative errno value.
int calculatesCRC32(core::String const& path, unsigned int& crc);
/// Whether path is a directory, or a link to one, whose entries can be read.
bool isDirectory(core::String const& path);
/// Returns the type of the entry at path, which is a link for a link; none if it does not exist or
/// cannot be accessed.
Type getType(core::String const& path);
/// Stores the status of the file at path, which need not be readable; -EINVAL if status is null.
int stat(core::String const& path, stats* status);

// Temporary files

/// Returns the directory for temporary files, with one trailing delimiter.
core::String getTempPath();
/// Creates an empty file with a unique name in that directory and returns its path, empty on
/// failure. The caller deletes the file.
core::String getTempFileName();

// Moving, deleting, copying

/// Moves a file or a directory. An existing to is replaced if replace is set; otherwise it is kept
/// (-EEXIST). A regular file is copied if to is on another file system.
int rename(core::String const& from, core::String const& to, bool replace);
/// Deletes a file, or a link and not its target.
int remove(core::String const& path);
/// Copies a regular file with its permissions. An existing to, or the file that to links to, is
/// replaced when the copy is complete: after a failure or cancellation (-ECANCELED) it is
/// unchanged. The directory of to must be writable.
/// - sparse: stores blocks of NUL bytes as holes, which use no disk space.
/// - sync: the data is on disk before to is replaced.
/// The callback, which may be null, receives the progress and may cancel.
int copy(core::String const& from, core::String const& to, bool sparse, bool sync,
         core::ICopyCallback* callback);
/// Creates the directory of the file at path, with all missing parents.
int createPathOfFile(core::String const& path);

// Whole contents

/// Opens the regular file at path for reading; -ENOTSUP for devices, which may be endless
/// (/dev/zero), and for pipes, whose end is unknown.
int openRegularFile(core::FileStream& file, core::String const& path);
/// Reads the whole file into memory and seeks to where its text starts, after any UTF-8 byte order
/// mark; -EFBIG for more than INT_MAX bytes.
int readRegularFile(core::MemoryStream& memory, core::String const& path);
/// Replaces the list by the file's lines; on failure it is unchanged.
int loadTextFile(core::StringArray& list, core::String const& path);
/// Writes each entry and CR LF; an entry with line breaks is loaded as several.
int saveTextFile(core::StringArray const& list, core::String const& path);
/// Load and save a list of names and values: see StringArray::LoadAsConfFileFrom.
int loadConfFile(core::StringArray& list, core::String const& path);
int saveConfFile(core::StringArray const& list, core::String const& path);
/// Returns the file's content up to its first NUL or to String::MaxLength; empty on failure.
core::String getFileContents(core::String const& path);
/// Return the decimal number at the start of the first line that is not blank; ifNotNumber if there
/// is none, ifUnreadable if the file cannot be read or has no such line.
long long getFileContentsAsInt64(core::String const& path, long long ifUnreadable,
                                 long long ifNotNumber);
int getFileContentsAsInt32(core::String const& path, int ifUnreadable, int ifNotNumber);
/// Writes text into the file, which is created if missing. With truncate, text becomes the whole
/// content; otherwise it replaces the start, and the rest of a longer content remains. mode adds
/// bits of platform::FileMode, such as openNoFollow.
int setFileContents(core::String const& path, core::String const& text, bool truncate,
                    unsigned mode = 0);
/// Appends text to the file, which is created if missing.
int addFileContents(core::String const& path, core::String const& text);

// Finding

/// Returns the paths whose last part matches the last part of pattern, in which "*" matches any
/// characters and "?" any one byte; the directory of pattern is used as it is. The paths are sorted
/// by the bytes of the names, and each directory comes before its entries.
/// - recursive: searches subdirectories too. Links to directories are not followed: they may form
///   a cycle.
/// - directories: includes matching directories.
/// An unreadable directory counts as empty.
core::StringArray search(core::String const& pattern, bool recursive, bool directories);

// No-ops: permissions, owners and caches are left to the operating system.

int setFileAttributes(core::String const& path, unsigned attributes);
int setFileOwnership(core::String const& path, core::String const& user, core::String const& group);
void sync();

}  // namespace sys::file
