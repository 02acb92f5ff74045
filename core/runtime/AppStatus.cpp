#include "core/runtime/AppStatus.h"

#include <new>

#include "core/text/cStrings.h"
#include "sys/file.h"

namespace core {

namespace {

int const statusCount = 7;
char const defaultDirectory[] = "/run";

String& directory() {
    static String theDirectory(defaultDirectory);
    return theDirectory;
}

}  // namespace

AppStatus::AppStatus(String const& applicationName) : name_(applicationName) {}

char const* AppStatus::ClassName() const {
    return "AppStatus";
}

String AppStatus::getFilePath() const {
    return directory().AppendNew(String::format("/%1.status").argi(1, name_));
}

bool AppStatus::writeToFile(int status) const {
    // With drive letters, "/run" is on the current drive, where any user may have created it.
    if (sys::pathStyle().hasDrives && directory() == defaultDirectory) {
        return false;
    }
    return sys::file::setFileContents(getFilePath(), String::format("%1").argi(1, status), true,
                                      sys::platform::openNoFollow) == 0;
}

bool AppStatus::_setStatus(Status status) const {
    try {
        return status == none ? sys::file::remove(getFilePath()) == 0 : writeToFile(status);
    } catch (std::bad_alloc const&) {
        // As harmless as a file that cannot be written: the application goes on.
        return false;
    }
}

int AppStatus::readFromFile() const {
    return strToIntDef(sys::file::getFileContents(getFilePath()).Trim().getCString(), -1);
}

int AppStatus::GetStatus() const {
    int const status = readFromFile();
    return status < statusCount ? status : none;
}

void AppStatus::SetDirectory(String const& path) {
    directory() = path;
}

}  // namespace core
