#include "sys/file.h"

#include <cerrno>
#include <string>

#include "core/crc/crc32.h"
#include "core/stream/FileStream.h"
#include "sys/dir.h"
#include "sys/platform/Files.h"

namespace sys::file {

namespace {

int const chunkSize = 4096;

/// Opens the file and stores its status.
int statOf(core::String const& path, stats& status) {
    core::FileStream file;
    int const result = file.Open(path, platform::openRead);
    return result == 0 ? file.Stat(status) : result;
}

}  // namespace

bool exists(core::String const& path) {
    stats status;
    return statOf(path, status) == 0 && status.type == Type::regular;
}

long long getFileSize(core::String const& path) {
    stats status;
    int const result = statOf(path, status);
    return result == 0 ? status.size : result;
}

unsigned int calculatesCRC32(core::String const& path) {
    unsigned int crc = 0;
    calculatesCRC32(path, crc);
    return crc;
}

int calculatesCRC32(core::String const& path, unsigned int& crc) {
    crc = 0;
    core::FileStream file;
    int const result = openRegularFile(file, path);
    if (result != 0) {
        return result;
    }
    char chunk[chunkSize];
    int got = file.Read(chunk, chunkSize);
    for (; got > 0; got = file.Read(chunk, chunkSize)) {
        crc = core::crc32::update(chunk, got, crc);
    }
    return got;
}

bool isDirectory(core::String const& path) {
    return platform::checkDirectory(path.getCString()) == 0;
}

Type getType(core::String const& path) {
    stats status;
    return platform::statEntry(path.getCString(), status) == 0 ? status.type : Type::none;
}

int stat(core::String const& path, stats* status) {
    return status != nullptr ? platform::statPath(path.getCString(), *status) : -EINVAL;
}

core::String getTempPath() {
    core::String const directory(platform::temporaryDirectory().c_str());
    return directory.ForceNoTrailingPathDelimiter().ForceTrailingPathDelimiter();
}

core::String getTempFileName() {
    std::string path;
    platform::FileHandle opened = platform::noFile;
    if (platform::createUniqueFile((getTempPath() + "Vorx-").getCString(), path, opened) != 0) {
        return "";
    }
    platform::closeFile(opened);
    return path.c_str();
}

int remove(core::String const& path) {
    return platform::removeFile(path.getCString());
}

int createPathOfFile(core::String const& path) {
    core::String const directory = path.GetFilePath();
    bool const recursive = true;
    return directory.IsEmpty() ? 0 : dir::create(directory, recursive);
}

int setFileAttributes(core::String const& /*path*/, unsigned /*attributes*/) {
    return 0;
}

int setFileOwnership(core::String const& /*path*/, core::String const& /*user*/,
                     core::String const& /*group*/) {
    return 0;
}

void sync() {}

}  // namespace sys::file
