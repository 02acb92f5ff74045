#include "sys/file.h"

#include "core/crc/crc32.h"
#include "core/stream/FileStream.h"

namespace sys::file {

namespace {

int const pieceSize = 4096;

/// Opens the file and reads its status: 0, or the negative error code of that step.
int statOf(core::String const& path, platform::FileStatus& status) {
    core::FileStream file;
    int const result = file.Open(path, platform::openRead);
    return result == 0 ? file.Stat(status) : result;
}

}  // namespace

bool exists(core::String const& path) {
    platform::FileStatus status;
    return statOf(path, status) == 0 && status.type == platform::FileType::regular;
}

long long getFileSize(core::String const& path) {
    platform::FileStatus status;
    int const result = statOf(path, status);
    return result == 0 ? status.size : result;
}

unsigned int calculatesCRC32(core::String const& path) {
    core::FileStream file;
    if (file.Open(path, platform::openRead) != 0) {
        return 0;
    }
    char piece[pieceSize];
    unsigned int crc = 0;
    for (int got = file.Read(piece, pieceSize); got > 0; got = file.Read(piece, pieceSize)) {
        crc = core::crc32::update(piece, got, crc);
    }
    return crc;
}

int remove(core::String const& path) {
    return platform::removeFile(path.getCString());
}

core::String getFileContents(core::String const& path) {
    core::String text;
    core::FileStream file;
    if (file.Open(path, platform::openRead) != 0) {
        return text;
    }
    char piece[pieceSize + 1];
    for (int got = file.Read(piece, pieceSize); got > 0; got = file.Read(piece, pieceSize)) {
        piece[got] = '\0';
        text.Append(piece);
    }
    return text;
}

int setFileContents(core::String const& path, core::String const& text, bool truncate) {
    unsigned const mode =
        platform::openWrite | platform::openCreate | (truncate ? platform::openTruncate : 0u);
    core::FileStream file;
    int const opened = file.Open(path, mode);
    if (opened != 0) {
        return opened;
    }
    return file.WriteAll(text.getCString(), text.GetLength());
}

}  // namespace sys::file
