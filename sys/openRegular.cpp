#include "sys/openRegular.h"

#include <cerrno>
#include <climits>

namespace sys {

int openRegular(core::FileStream& file, core::String const& path) {
    int const opened = file.Open(path, platform::openRead);
    if (opened != 0) {
        return opened;
    }
    platform::FileStatus status;
    int const result = file.Stat(status);
    if (result != 0) {
        return result;
    }
    return status.type == platform::FileType::regular ? 0 : -ENOTSUP;
}

int readRegular(core::MemoryStream& memory, core::String const& path) {
    core::FileStream file;
    int const opened = openRegular(file, path);
    if (opened != 0) {
        return opened;
    }
    if (file.Size() > INT_MAX) {
        return -EFBIG;
    }
    long long const copied = file.CopyTo(memory);
    if (copied < 0) {
        return static_cast<int>(copied);
    }
    bool const marked = memory.View().starts_with("\xEF\xBB\xBF");
    return memory.Seek(marked ? 3 : 0) < 0 ? -EIO : 0;
}

}  // namespace sys
