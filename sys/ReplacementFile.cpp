#include "sys/ReplacementFile.h"

#include <cerrno>
#include <string>

#include "core/stream/FileStream.h"

namespace sys {

namespace {

/// Replaces target by the file that it links to; a dangling link stays the target.
int followLinks(core::String& target) {
    std::string resolved;
    int const result = platform::resolvePath(target.getCString(), resolved);
    if (result == 0) {
        target = resolved.c_str();
    }
    return result == -ENOENT ? 0 : result;
}

int checkTarget(core::String const& target) {
    platform::FileStatus status;
    int const result = platform::statPath(target.getCString(), status);
    if (result != 0) {
        return result == -ENOENT ? 0 : result;
    }
    if (status.type == platform::FileType::directory) {
        return -EISDIR;
    }
    if (status.type != platform::FileType::regular) {
        return -ENOTSUP;
    }
    // Permission to change the directory would allow replacing a write-protected file.
    core::FileStream probe;
    return probe.Open(target, platform::openWrite);
}

}  // namespace

ReplacementFile::~ReplacementFile() {
    if (!path_.empty()) {
        Close();
        platform::removeFile(path_.c_str());
    }
}

char const* ReplacementFile::ClassName() const {
    return "ReplacementFile";
}

int ReplacementFile::Create(core::String const& target) {
    target_ = target;
    int result = followLinks(target_);
    if (result == 0) {
        result = checkTarget(target_);
    }
    if (result != 0) {
        return result;
    }
    core::String const prefix = target_.GetFilePath().AppendNewPath(".copy-");
    platform::FileHandle opened = platform::noFile;
    result = platform::createUniqueFile(prefix.getCString(), path_, opened);
    if (result == 0) {
        Adopt(opened);
    }
    return result;
}

int ReplacementFile::TakeOver(bool replace) {
    int result = Close();
    if (result == 0) {
        result = platform::renameFile(path_.c_str(), target_.getCString(), replace);
    }
    if (result == 0) {
        path_.clear();
    }
    return result;
}

}  // namespace sys
