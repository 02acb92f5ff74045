#include "sys/TemporaryFile.h"

#include <string>

#include "sys/file.h"

namespace sys {

TemporaryFile::~TemporaryFile() {
    Close();
    if (!path_.IsEmpty()) {
        platform::removeFile(path_.getCString());
    }
}

char const* TemporaryFile::ClassName() const {
    return "TemporaryFile";
}

int TemporaryFile::Create() {
    std::string path;
    platform::FileHandle opened = platform::noFile;
    int const result =
        platform::createUniqueFile((file::getTempPath() + "Vorx-").getCString(), path, opened);
    if (result != 0) {
        return result;
    }
    Adopt(opened);
    if (platform::removeFile(path.c_str()) != 0) {
        path_ = path.c_str();
    }
    return 0;
}

}  // namespace sys
