#include "update/session/UpdateFile.h"

#include "core/crc/crc32.h"
#include "sys/file.h"
#include "update/protocol/records.h"

namespace update {

using core::fault;
using core::String;

std::optional<Failure> UpdateFile::Open(String const& path) {
    path_ = path;
    if (!sys::file::exists(path)) {
        return fileMissing(path);
    }
    sys::platform::FileStatus status;
    if (stream_.Open(path, sys::platform::openRead) != 0 || stream_.Stat(status) != 0) {
        return fileNotOpened(path);
    }
    if (status.size > largestFile) {
        return fileTooBig(path);
    }
    modified_ = core::Time(status.modified);
    char chunk[chunkSize];
    int length = 0;
    while ((length = stream_.Read(chunk, chunkSize)) > 0) {
        // The file may be growing.
        if (static_cast<std::uint32_t>(length) > largestFile - static_cast<std::uint32_t>(size_)) {
            return fileTooBig(path);
        }
        crc_ = core::crc32::update(chunk, length, crc_);
        size_ += length;
    }
    if (length < 0) {
        return fileNotRead(path);
    }
    if (size_ == 0) {
        return Failure{fault("Update file empty", "The file \"%1\" has no bytes", path),
                       Cause::fileEmpty};
    }
    return {};
}

Failure fileMissing(String const& path) {
    return {fault("Update file missing",
                  "Cannot find the file \"%1\". Please provide the correct path", path),
            Cause::fileMissing};
}

Failure fileNotOpened(String const& path) {
    return {fault("Error opening the file",
                  "Cannot open the file \"%1\". Please provide the correct rights", path),
            Cause::fileUnreadable};
}

Failure fileNotRead(String const& path) {
    return {fault("Error reading from the file",
                  "Error occurred reading the file \"%1\". This is a mess", path),
            Cause::fileUnreadable};
}

Failure fileTooBig(String const& path) {
    return {fault("Update file too big", "The file \"%1\" exceeds the maximum of %2 bytes", path,
                  largestFile),
            Cause::fileTooBig};
}

Failure fileChanged(String const& path) {
    return {fault("Update file changed", "The file \"%1\" changed while it was sent", path),
            Cause::fileChanged};
}

}  // namespace update
