#include "device/ReceivedUpdate.h"

#include "core/text/message.h"
#include "sys/file.h"

namespace device {

using core::String;

namespace {

/// A path that does not exist yet. Files are numbered from 1 on, so the end of the numbers in use
/// is found by doubling and halving: a look at each of them would make every update slower than the
/// last.
String freePath(String const& folder, String const& device) {
    auto const pathOf = [&](unsigned long long number) {
        return folder.AppendNewPath(core::message("%1-%2.rvl", device, number));
    };
    auto const isFree = [&](unsigned long long number) {
        return sys::file::getType(pathOf(number)) == sys::file::Type::none;
    };
    unsigned long long taken = 0;
    unsigned long long free = 1;
    while (!isFree(free)) {
        free *= 2;
    }
    while (free - taken > 1) {
        unsigned long long const middle = taken + (free - taken) / 2;
        (isFree(middle) ? free : taken) = middle;
    }
    return pathOf(free);
}

}  // namespace

ReceivedUpdate::ReceivedUpdate(UpdatePolicy const& policy, String const& device)
    : policy_(policy), device_(device) {}

int ReceivedUpdate::Open() {
    if (file_.IsOpened()) {
        return 0;
    }
    path_ = Stores() ? freePath(policy_.folder.c_str(), device_) : sys::file::getTempPath();
    return Stores() ? file_.Create(path_) : file_.CreateNameless();
}

int ReceivedUpdate::Append(void const* bytes, int length) {
    if (!RequiresArchive() && !Stores()) {
        return 0;
    }
    int const result = Open();
    return result == 0 ? file_.WriteAll(bytes, length) : result;
}

int ReceivedUpdate::Store() {
    int const result = Open();
    // Another device may have taken the name meanwhile; its file is not to be lost.
    return result == 0
               ? file_.Commit(sys::AtomicFile::Existing::keep, sys::AtomicFile::Durable::yes)
               : result;
}

}  // namespace device
