#include "device/Inbox.h"

#include "sys/file.h"

namespace device {

Inbox::~Inbox() {
    file_.Close();
    if (!path_.IsEmpty()) {
        sys::file::remove(path_);
    }
}

bool Inbox::Keep(void const* bytes, int length) {
    if (path_.IsEmpty()) {
        path_ = sys::file::getTempFileName();
        file_.Open(path_, sys::platform::openRead | sys::platform::openWrite);
    }
    return file_.WriteAll(bytes, length) == 0;
}

int Inbox::ReadArchive(core::StreamSequencerReader& reader) {
    reader.SetStream(&file_);
    return reader.Read();
}

}  // namespace device
