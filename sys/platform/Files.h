#pragma once

#include <cstdint>
#include <string>

namespace sys::platform {

/// An open file. The opener owns it and closes it once.
using FileHandle = std::intptr_t;
inline constexpr FileHandle noFile = -1;

/// How a file is opened: bits, to be combined.
enum FileMode : unsigned {
    openRead = 0x100,
    openWrite = 0x200,
    openCreate = 0x400,     ///< make the file when it is missing
    openTruncate = 0x800,   ///< drop what it holds
    openAppend = 0x1000,    ///< every write goes to the end
    openNoFollow = 0x2000,  ///< fail with -ELOOP if path is a symbolic link
};

enum class FileType { none, regular, directory, link, pipe, socket, device, other };

enum class SeekOrigin { begin, current, end };

struct FileStatus {
    long long size = 0;  ///< bytes
    FileType type = FileType::other;
    // Two paths lead to the same file if both numbers are equal.
    std::uint64_t volume = 0;
    std::uint64_t number = 0;
};

// Every operation returns a negative error code (an errno value with its sign changed) on failure,
// and 0 on success where nothing else is said. Paths are in the platform's form.

/// Opens path and stores the handle. Never waits for the other end of a pipe. Folders are no files:
/// opening one fails with -EISDIR.
int openFile(char const* path, unsigned mode, FileHandle& opened);
/// Makes a new, empty file that only its owner may use, under a free name that begins with prefix
/// (a path), and opens it for reading and writing.
int createUniqueFile(char const* prefix, std::string& path, FileHandle& opened);
/// Reads up to count bytes; returns the number read, 0 at the end.
int readFile(FileHandle file, void* buffer, int count);
/// Writes up to count bytes; returns the number written, which may be smaller.
int writeFile(FileHandle file, void const* data, int count);
/// Moves the position, also past the end, and returns it as counted from the start; -EINVAL before
/// the start, -ESPIPE where there is no position.
long long seekFile(FileHandle file, long long offset, SeekOrigin origin);
/// Waits until all that was written has reached the disk.
int syncFile(FileHandle file);
int statFile(FileHandle file, FileStatus& status);
/// Makes the file as long as size says: what lies behind is dropped.
int resizeFile(FileHandle file, long long size);
/// Gives one file the access rights of the other, as far as its file system knows any.
void copyPermissions(FileHandle from, FileHandle to);
/// Closes the handle, which is gone in any case.
int closeFile(FileHandle file);

/// The status of what path leads to.
int statPath(char const* path, FileStatus& status);
/// The status of what stands at path itself, which may be a link.
int statEntry(char const* path, FileStatus& status);
/// The absolute path behind all links.
int resolvePath(char const* path, std::string& resolved);
/// Deletes a file, or a link and not what it leads to.
int removeFile(char const* path);
/// Moves within one file system (-EXDEV: another one). An existing to is replaced if replace is
/// set, otherwise it is an error (-EEXIST).
int renameFile(char const* from, char const* to, bool replace);

}  // namespace sys::platform
