#include "device/ReceivedUpdate.h"

#include "core/text/message.h"
#include "sys/file.h"

namespace device {

using core::String;

namespace {

/// Returns a path that does not exist yet. Files are numbered from 1, so a binary search finds the
/// end of the numbers in use: testing each would make every update slower than the last.
String freePath(String const& directory, String const& device) {
    auto const pathOf = [&](unsigned long long number) {
        return directory.AppendNewPath(core::message("%1-%2.rvl", device, number));
    };
    auto const isFree = [&](unsigned long long number) {
        return sys::file::getType(pathOf(number)) == sys::file::Type::none;
    };
    unsigned long long used = 0;
    unsigned long long free = 1;
    while (!isFree(free)) {
        free *= 2;
    }
    while (free - used > 1) {
        unsigned long long const middle = used + (free - used) / 2;
        (isFree(middle) ? free : used) = middle;
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
    path_ = Stores() ? freePath(policy_.directory.c_str(), device_) : sys::file::getTempPath();
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
    // Another device may use the name by now: keep its file.
    return result == 0
               ? file_.Commit(sys::AtomicFile::Existing::keep, sys::AtomicFile::Durable::yes)
               : result;
}

}  // namespace device
