#include "device/Inbox.h"

#include <cerrno>

#include "sys/file.h"

namespace device {

using core::String;

namespace {

/// The first name of this form that nothing has.
String freePath(String const& folder, String const& device) {
    for (int number = 1;; ++number) {
        String path =
            folder.AppendNewPath(String::format("%1-%2.rvl").argi(2, number).argi(1, device));
        if (sys::file::getType(path) == sys::file::Type::none) {
            return path;
        }
    }
}

}  // namespace

Inbox::Inbox(Intake const& intake, String const& device) : intake_(intake), device_(device) {}

Inbox::~Inbox() {
    temporary_.Close();
    if (!temporaryPath_.IsEmpty()) {
        sys::file::remove(temporaryPath_);
    }
}

int Inbox::Open() {
    if (file_ != nullptr) {
        return 0;
    }
    int result = 0;
    if (Stores()) {
        target_ = freePath(intake_.folder, device_);
        result = stored_.Create(target_);
        file_ = &stored_;
    } else {
        temporaryPath_ = sys::file::getTempFileName();
        result =
            temporary_.Open(temporaryPath_, sys::platform::openRead | sys::platform::openWrite);
        file_ = &temporary_;
    }
    return result;
}

bool Inbox::Keep(void const* bytes, int length) {
    bool const needed = TakesArchivesOnly() || Stores();
    return !needed || (Open() == 0 && file_->WriteAll(bytes, length) == 0);
}

int Inbox::ReadArchive(core::StreamSequencerReader& reader) {
    Open();
    reader.SetStream(file_);
    return reader.Read();
}

int Inbox::Store(String& path) {
    int result = Open();
    path = target_;
    if (result == 0) {
        result = stored_.Sync();
    }
    // Another device may have taken the name meanwhile; its file is not to be lost.
    return result == 0 ? stored_.TakeOver(false) : result;
}

}  // namespace device
