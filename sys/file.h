#pragma once

#include "core/stream/ICopyCallback.h"
#include "core/text/String.h"
#include "core/text/StringArray.h"
#include "sys/platform/Files.h"

/// Files by their path: questions, whole contents in one call, copying, moving, finding. Nothing
/// here throws or prints. An int result is 0 or a negative error code: an errno value with its sign
/// changed. Whatever reads a whole file takes regular files only (-ENOTSUP): a device need not
/// end.
namespace sys::file {

/// What is known of a file, as HandleStream::Stat gives it.
using stats = platform::FileStatus;
using Type = platform::FileType;

// Questions

/// True when path is a regular file that can be opened for reading. A folder is none, nor is a
/// pipe or a device: their size says nothing about what can be read from them.
bool exists(core::String const& path);
/// The size in bytes, or the negative error code of opening the file or reading its status.
long long getFileSize(core::String const& path);
/// The CRC-32 of the whole file. 0 when it cannot be opened, as for an empty one; a read error
/// ends the sum where it happened. Callers that must tell these apart ask exists and getFileSize.
unsigned int calculatesCRC32(core::String const& path);
/// The same, but it tells how it went: 0 when the whole file was read, or a negative error code.
int calculatesCRC32(core::String const& path, unsigned int& crc);
/// True when path is a folder, or leads to one, whose entries may be read.
bool isDirectory(core::String const& path);
/// The kind of what stands at path, which is a link for a link; none when there is nothing or it
/// cannot be reached.
Type getType(core::String const& path);
/// The status of what path leads to, which need not be readable; -EINVAL when status is null.
int stat(core::String const& path, stats* status);

// Temporary files

/// The folder for temporary files, always with one delimiter at its end.
core::String getTempPath();
/// Makes a new, empty file in that folder under a name that nothing else has and returns its path;
/// the caller deletes it. Empty when it cannot be made.
core::String getTempFileName();

// Moving, deleting, copying

/// Moves a file or a folder. What stands at to is replaced or, unless replace is set, left alone
/// (-EEXIST). A regular file may move to another file system; it is then copied.
int rename(core::String const& from, core::String const& to, bool replace);
/// Deletes a file, or a link and not what it leads to.
int remove(core::String const& path);
/// Copies a regular file with its access rights. A file at to is replaced, where a link leads to
/// it as well, in one step and only once the copy is complete: a failed or cancelled one
/// (-ECANCELED) leaves nothing behind and the old file as it was. The folder of to must therefore
/// be one that can be written in.
/// - sparse: stretches of nothing but NUL become holes, which take no room on the disk.
/// - sync: the content has reached the disk before it takes the name.
/// The callback, which may be null, is told the progress and may cancel.
int copy(core::String const& from, core::String const& to, bool sparse, bool sync,
         core::ICopyCallback* callback);
/// Makes the folder that path names a file in, with all missing parents.
int createPathOfFile(core::String const& path);

// Whole contents

/// Replaces the list by the file's lines; on failure it stays as it was.
int loadTextFile(core::StringArray& list, core::String const& path);
/// Writes each entry and CR LF; an entry that holds line breaks will come back as several.
int saveTextFile(core::StringArray const& list, core::String const& path);
/// The same for a list of name and value: see StringArray::LoadAsConfFileFrom.
int loadConfFile(core::StringArray& list, core::String const& path);
int saveConfFile(core::StringArray const& list, core::String const& path);
/// The whole file as text, which ends at its first NUL or at String::MaxLength; empty when it
/// cannot be read.
core::String getFileContents(core::String const& path);
/// The decimal number that the first line with anything but white space begins with; ifNotNumber
/// when it begins with none, ifUnreadable when the file cannot be read or has no such line.
long long getFileContentsAsInt64(core::String const& path, long long ifUnreadable,
                                 long long ifNotNumber);
int getFileContentsAsInt32(core::String const& path, int ifUnreadable, int ifNotNumber);
/// Writes text into the file, which is made when it is missing. With truncate the text becomes the
/// whole content; without, it replaces the start and a longer old content keeps its tail. mode adds
/// bits of platform::FileMode, such as openNoFollow.
int setFileContents(core::String const& path, core::String const& text, bool truncate,
                    unsigned mode = 0);
/// Appends text to the file, which is made when it is missing.
int addFileContents(core::String const& path, core::String const& text);

// Finding

/// The paths whose last part matches the last part of pattern, where "*" stands for any characters
/// and "?" for any one; the folder in front is taken as it is. Sorted by the bytes of the names,
/// each folder before what it holds.
/// - subFolders: looks in the folders below as well. Links to folders are not entered: they may
///   lead back.
/// - folders: folders that match are part of the result, not only what is in them.
/// A folder that cannot be read counts as empty.
core::StringArray search(core::String const& pattern, bool subFolders, bool folders);

// Accepted and without effect: the house leaves rights, owners and caches to the system.

int setFileAttributes(core::String const& path, unsigned attributes);
int setFileOwnership(core::String const& path, core::String const& user, core::String const& group);
void sync();

}  // namespace sys::file
