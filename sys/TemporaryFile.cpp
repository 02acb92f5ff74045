#include "sys/TemporaryFile.h"

#include "sys/file.h"

namespace sys {

TemporaryFile::~TemporaryFile() {
    Close();
    if (!path_.empty()) {
        platform::removeFile(path_.c_str());
    }
}

char const* TemporaryFile::ClassName() const {
    return "TemporaryFile";
}

int TemporaryFile::Create() {
    platform::FileHandle opened = platform::noFile;
    int const result =
        platform::createUniqueFile((file::getTempPath() + "Vorx-").getCString(), path_, opened);
    if (result != 0) {
        return result;
    }
    Adopt(opened);
    if (platform::removeFile(path_.c_str()) == 0) {
        path_.clear();
    }
    return 0;
}

}  // namespace sys
