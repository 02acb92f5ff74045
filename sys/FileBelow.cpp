#include "sys/FileBelow.h"

#include <cerrno>

#include "sys/platform/FilesBelow.h"

namespace sys {

namespace {

int const attempts = 100;

}  // namespace

FileBelow::~FileBelow() {
    if (!temporaryPath_.IsEmpty()) {
        Close();
        platform::removeBelow(folder_.getCString(), temporaryPath_.getCString());
    }
}

char const* FileBelow::ClassName() const {
    return "FileBelow";
}

int FileBelow::Create(core::String const& folder, core::String const& path) {
    folder_ = folder;
    name_ = path.GetFileName(posixPathStyle);
    platform::FileStatus status;
    if (platform::statBelow(folder.getCString(), path.getCString(), status) == -EINVAL) {
        return -EINVAL;
    }
    core::String const front = path.Left(path.GetLength() - name_.GetLength());
    int result = -EEXIST;
    for (int i = 0; i < attempts && result == -EEXIST; ++i) {
        core::String const temporary =
            front.AppendNew(core::String::format(".unpacking-%1").argi(1, i));
        platform::FileHandle opened = platform::noFile;
        result = platform::createBelow(folder.getCString(), temporary.getCString(), opened);
        if (result == 0) {
            temporaryPath_ = temporary;
            Adopt(opened);
        }
    }
    return result;
}

int FileBelow::TakeOver(bool replace) {
    int result = Close();
    if (result == 0) {
        result = platform::renameBelow(folder_.getCString(), temporaryPath_.getCString(),
                                       name_.getCString(), replace);
    }
    if (result == 0) {
        temporaryPath_.Clear();
    }
    return result;
}

}  // namespace sys
