#include "core/stream/FileStream.h"

namespace core {

char const* FileStream::ClassName() const {
    return "FileStream";
}

int FileStream::Open(String const& path, unsigned mode) {
    Close();
    sys::platform::FileHandle opened = sys::platform::noFile;
    int const result = sys::platform::openFile(path.getCString(), mode, opened);
    if (result == 0) {
        Adopt(opened);
    }
    return result;
}

}  // namespace core
