#include "job/LogFile.h"

#include <cerrno>

namespace job {

using core::fault;
using core::String;

std::optional<Error> LogFile::Open(String const& path, String const& origin) {
    // Reading, too, to look at the end of an existing log.
    unsigned const mode = sys::platform::openRead | sys::platform::openWrite |
                          sys::platform::openCreate | sys::platform::openAppend;
    if (stream_.Open(path, mode) != 0) {
        return logUnwritable(path);
    }
    sys::platform::FileStatus log;
    sys::platform::FileStatus update;
    if (stream_.Stat(log) == 0 && sys::platform::statPath(origin.getCString(), update) == 0 &&
        log.volume == update.volume && log.number == update.number) {
        stream_.Close();
        return logUnwritable(path);
    }
    // Any number of runs may write to a device, such as /dev/null.
    if (log.type == sys::platform::FileType::regular && stream_.Lock() == -EWOULDBLOCK) {
        stream_.Close();
        return Error{"logInUse", fault("Log in use", "Another run writes to \"%1\"", path),
                     Step::file};
    }
    char last = '\n';
    if (stream_.Seek(-1, core::Stream::SeekOrigin::end) >= 0) {
        stream_.Read(&last, 1);
    }
    isTorn_ = last != '\n';
    return {};
}

bool LogFile::Write(String const& line) {
    String const text = isTorn_ ? String("\n").AppendNew(line) : line;
    int const written = stream_.WriteAll(text.getCString(), text.GetLength());
    bool const isWritten = written == 0;
    isTorn_ = !isWritten;
    return isWritten;
}

bool LogFile::Sync() {
    int const result = stream_.Sync();
    // A pipe or a device has no disk.
    return result == 0 || result == -EINVAL || result == -EROFS;
}

Error logUnwritable(String const& path) {
    return {"logUnwritable", fault("Log not written", "Cannot write to the log \"%1\"", path),
            Step::file};
}

}  // namespace job
