#include "sys/FileBelow.h"

#include <cerrno>
#include <random>

namespace sys {

namespace {

/// A name that no archive can foresee: one of its files could have the name otherwise.
core::String temporaryName() {
    std::random_device random;
    return core::String::format(".unpacking-%1%2")
        .argi(1, static_cast<unsigned>(random()), 8, 16)
        .argi(2, static_cast<unsigned>(random()), 8, 16);
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
