#pragma once

#include <cstdint>

namespace sys::platform {

/// An open file. The opener owns it and closes it once.
using FileHandle = std::intptr_t;
inline constexpr FileHandle noFile = -1;

/// How a file is opened: bits, to be combined.
enum FileMode : unsigned {
    openRead = 0x100,
    openWrite = 0x200,
    openCreate = 0x400,    ///< make the file when it is missing
    openTruncate = 0x800,  ///< drop what it holds
    openAppend = 0x1000,   ///< every write goes to the end
};

enum class FileType { regular, directory, other };

struct FileStatus {
    long long size = 0;  ///< bytes
    FileType type = FileType::other;
};

// Every operation returns a negative error code (an errno value with its sign changed) on failure.
// Paths are in the platform's form. Folders are no files: opening one fails with -EISDIR.

/// Opens path and stores the handle; 0 on success. Never waits for the other end of a pipe.
int openFile(char const* path, unsigned mode, FileHandle& opened);
/// Reads up to count bytes; returns the number read, 0 at the end.
int readFile(FileHandle file, void* buffer, int count);
/// Writes up to count bytes; returns the number written, which may be smaller.
int writeFile(FileHandle file, void const* data, int count);
/// The status of an open file; 0 on success.
int statFile(FileHandle file, FileStatus& status);
/// Closes the handle; 0 on success. The handle is gone in any case.
int closeFile(FileHandle file);
/// Deletes a file; 0 on success.
int removeFile(char const* path);

}  // namespace sys::platform
