#include "sys/FileBelow.h"

#include <cerrno>
#include <random>

#include "core/text/message.h"

namespace sys {

namespace {

/// A name that no archive can predict: one of its files could have the name otherwise.
core::String temporaryName() {
    std::random_device random;
    return core::message(".unpacking-%1-%2", random(), random());
}

}  // namespace

FileBelow::~FileBelow() {
    if (!temporaryPath_.IsEmpty()) {
        Close();
        directory_.Remove(temporaryPath_.getCString());
    }
}

char const* FileBelow::ClassName() const {
    return "FileBelow";
}

int FileBelow::Create(core::String const& path) {
    name_ = path.GetFileName(posixPathStyle);
    platform::FileStatus status;
    if (directory_.Stat(path.getCString(), status) == -EINVAL) {
        return -EINVAL;
    }
    core::String const temporary =
        path.Left(path.GetLength() - name_.GetLength()).AppendNew(temporaryName());
    platform::FileHandle opened = platform::noFile;
    int const result = directory_.Create(temporary.getCString(), name_.getCString(), opened);
    if (result == 0) {
        temporaryPath_ = temporary;
        Adopt(opened);
    }
    return result;
}

int FileBelow::TakeOver(bool replace) {
    int result = Close();
    if (result == 0) {
        result = directory_.Rename(temporaryPath_.getCString(), name_.getCString(), replace);
    }
    if (result == 0) {
        temporaryPath_.Clear();
    }
    return result;
}

}  // namespace sys
