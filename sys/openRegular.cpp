#include "sys/openRegular.h"

#include <cerrno>

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

}  // namespace sys
