#include "core/runtime/AppStatus.h"

#include <new>

#include "core/text/strToNumber.h"
#include "sys/file.h"

namespace core {

namespace {

int const statusCount = 7;
char const usualFolder[] = "/run";

String& folder() {
    static String theFolder(usualFolder);
    return theFolder;
}

}  // namespace

AppStatus::AppStatus(String const& applicationName) : name_(applicationName) {}

char const* AppStatus::ClassName() const {
    return "AppStatus";
}

String AppStatus::getFilePath() const {
    return folder().AppendNew(String::format("/%1.status").argi(1, name_));
}

bool AppStatus::writeToFile(int status) const {
    // Where systems have drives, "/run" is on the current one and any user may have created it.
    if (sys::pathStyle().hasDrives && folder() == usualFolder) {
        return false;
    }
    return sys::file::setFileContents(getFilePath(), String::format("%1").argi(1, status), true,
                                      sys::platform::openNoFollow) == 0;
}

bool AppStatus::_setStatus(Status status) const {
    try {
        return status == none ? sys::file::remove(getFilePath()) == 0 : writeToFile(status);
    } catch (std::bad_alloc const&) {
        // Like a file that cannot be written: nothing that an application should end of.
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

void AppStatus::setFolder(String const& path) {
    folder() = path;
}

}  // namespace core
