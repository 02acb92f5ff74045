#include "sys/platform/Folders.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "sys/platform/posix/results.h"

namespace sys::platform {

namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};
using Folder = std::unique_ptr<DIR, CloseFolder>;

FolderEntry entryOf(int folder, char const* name) {
    struct stat found {};
    bool known = fstatat(folder, name, &found, AT_SYMLINK_NOFOLLOW) == 0;
    bool const isLink = known && S_ISLNK(found.st_mode);
    if (isLink) {
        known = fstatat(folder, name, &found, 0) == 0;
    }
    return {name, known ? fileTypeOf(found.st_mode) : FileType::other, isLink};
}

}  // namespace

int listFolder(char const* path, std::vector<FolderEntry>& entries) {
    Folder const folder(opendir(path));
    if (folder == nullptr) {
        return -errno;
    }
    for (;;) {
        errno = 0;
        dirent const* const entry = readdir(folder.get());
        if (entry == nullptr) {
            return -errno;
        }
        std::string_view const name = entry->d_name;
        if (name != "." && name != "..") {
            entries.push_back(entryOf(dirfd(folder.get()), entry->d_name));
        }
    }
}

int checkFolder(char const* path) {
    return Folder(opendir(path)) != nullptr ? 0 : -errno;
}

int createFolder(char const* path) {
    return negativeErrno(mkdir(path, 0777));
}

int changeFolder(char const* path) {
    return negativeErrno(chdir(path));
}

int currentFolder(std::string& path) {
    return takeText(getcwd(nullptr, 0), path);
}

std::string temporaryFolder() {
    char const* const wanted = std::getenv("TMPDIR");
    return wanted != nullptr && *wanted != '\0' ? wanted : "/tmp";
}

}  // namespace sys::platform
