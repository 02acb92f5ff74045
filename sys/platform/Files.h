#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace sys::platform {

/// An open file. The opener owns it and closes it once.
using FileHandle = std::intptr_t;
inline constexpr FileHandle noFile = -1;

/// How a file is opened: bits, to be combined.
enum FileMode : unsigned {
    openRead = 0x100,
    openWrite = 0x200,
    openCreate = 0x400,     ///< create the file if it is missing
    openTruncate = 0x800,   ///< remove its content
    openAppend = 0x1000,    ///< write at the end only
    openNoFollow = 0x2000,  ///< fail with -ELOOP if path is a symbolic link
};

enum class FileType { none, regular, directory, link, pipe, socket, device, other };

enum class SeekOrigin { begin, current, end };

struct FileStatus {
    long long size = 0;      ///< bytes
    long long modified = 0;  ///< the time of the last change, in ms since 1970 in UTC
    FileType type = FileType::other;
    /// Bits such as 0755; 0644 where the operating system has none.
    unsigned permissions = 0644;
    // Two paths name the same file if both numbers are equal.
    std::uint64_t volume = 0;
    std::uint64_t number = 0;
};

// Unless described otherwise, every operation of this directory's headers returns 0 or a negative
// errno value. An output parameter is only stored on success. Paths are in the platform's form.

/// Opens path and stores the handle, without waiting for the other end of a pipe. A directory
/// cannot be opened (-EISDIR).
int openFile(char const* path, unsigned mode, FileHandle& opened);
/// Creates an empty owner-only file at an unused path, prefix followed by a unique part, and opens
/// it for reading and writing.
int createUniqueFile(char const* prefix, std::string& path, FileHandle& opened);
/// Reads up to count bytes; returns the number read, 0 at the end.
int readFile(FileHandle file, void* buffer, int count);
/// Writes up to count bytes; returns the number written.
int writeFile(FileHandle file, void const* data, int count);
/// Moves the position, possibly past the end, and returns it as an offset from the start; -EINVAL
/// before the start, -ESPIPE for a file without a position.
long long seekFile(FileHandle file, long long offset, SeekOrigin origin);
/// Locks the file for this process, or another one, until it is closed. Returns -EWOULDBLOCK if
/// another handle has it locked. Others can still read the file.
int lockFile(FileHandle file);
/// Waits until all written data is on disk.
int syncFile(FileHandle file);
int statFile(FileHandle file, FileStatus& status);
/// Truncates or extends the file to size bytes.
int resizeFile(FileHandle file, long long size);
/// Gives to the permissions of from, as far as the file system supports them.
void copyPermissions(FileHandle from, FileHandle to);
/// Closes the file; the handle is invalid afterwards, even on failure.
int closeFile(FileHandle file);

/// Stores the status of the file at path, following links.
int statPath(char const* path, FileStatus& status);
/// Stores the status of the entry at path itself, which may be a link.
int statEntry(char const* path, FileStatus& status);
/// Stores the absolute path of the file at path, without links.
int resolvePath(char const* path, std::string& resolved);
/// Deletes a file, or a link and not its target.
int removeFile(char const* path);
/// Moves a file within its file system (-EXDEV: another one). An existing to is replaced if replace
/// is set, otherwise it is an error (-EEXIST).
int renameFile(char const* from, char const* to, bool replace);

struct DirectoryEntry {
    std::string name;  ///< without the directory
    FileType type;     ///< of a link's target; other for a dangling link
    bool isLink;
};

/// Appends the entries of a directory in no particular order, without "." and "..".
int listDirectory(char const* path, std::vector<DirectoryEntry>& entries);
/// Returns 0 if path is a directory whose entries can be read.
int checkDirectory(char const* path);
/// Creates a directory in an existing parent; -EEXIST if path exists.
int createDirectory(char const* path);

/// Set and get the working directory of the process.
int changeDirectory(char const* path);
int currentDirectory(std::string& path);
/// Returns the user's directory for temporary files.
std::string temporaryDirectory();

/// The permissions of a new file.
enum class PartPermissions {
    ownerOnly,  ///< as far as files have permissions of their own
    ofTarget,   ///< those of the regular file that it replaces, if any, else the usual ones
};

/// A directory whose files are accessed by paths from an untrusted source. It stays open: renaming
/// it, or replacing it by a link, does not redirect later calls.
///
/// Paths are relative to it: names separated by "/", none of them empty, "." or ".." (-EINVAL), on
/// every platform. Links are never followed, even if created meanwhile: -ELOOP.
class ConfinedDirectory {
public:
    ConfinedDirectory() = default;
    ConfinedDirectory(ConfinedDirectory const&) = delete;
    ConfinedDirectory& operator=(ConfinedDirectory const&) = delete;
    ~ConfinedDirectory() { Close(); }

    /// Opens the directory at path, a trusted path of the platform whose links are followed. Closes
    /// the directory opened before.
    int Open(char const* path);

    /// Whether the file system of the directory allows a name of this length. If its limit is
    /// unknown or no directory is open, the platform's limit applies, if any.
    bool AllowsName(std::string_view name) const;
    /// Stores the status of the entry at path itself, which may be a link.
    int Stat(char const* path, FileStatus& status) const;

    // A part is the temporary file of a target, in the same directory, under a name that the caller
    // chooses and that no untrusted source can predict.

    /// Creates the part of the target at path (-EEXIST if it exists), and the missing directories
    /// of path, and opens it for reading and writing.
    int CreatePart(char const* path, char const* part, PartPermissions permissions,
                   FileHandle& opened) const;
    /// Renames a part to its target; permissions are those that it was created with. An existing
    /// regular file or link is replaced if replace is set, otherwise it is an error (-EEXIST).
    int RenamePart(char const* path, char const* part, PartPermissions permissions,
                   bool replace) const;
    int RemovePart(char const* path, char const* part) const;

private:
    void Close() {
        if (directory_ != noFile) {
            closeFile(directory_);
            directory_ = noFile;
        }
    }

    FileHandle directory_ = noFile;
};

}  // namespace sys::platform
