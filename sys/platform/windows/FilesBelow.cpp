#include "sys/platform/FilesBelow.h"

#include <windows.h>

#include <cerrno>
#include <string>
#include <vector>

#include "sys/platform/Folders.h"
#include "sys/platform/splitPlainPath.h"
#include "sys/platform/windows/errors.h"
#include "sys/platform/windows/text.h"

namespace sys::platform {

namespace {

/// What would divide names, name a drive or a stream, or stand for other characters.
char const reserved[] = "\\:*?\"<>|";

/// Opens a directory such that others can neither delete nor rename it; flags may say that a link
/// is not followed.
int hold(char const* path, DWORD flags, FileHandle& opened) {
    HANDLE const directory = CreateFileW(systemPath(path).c_str(), FILE_LIST_DIRECTORY,
                                         FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                         FILE_FLAG_BACKUP_SEMANTICS | flags, nullptr);
    if (directory == INVALID_HANDLE_VALUE) {
        return negativeLastError();
    }
    opened = reinterpret_cast<FileHandle>(directory);
    return 0;
}

/// A walk from a directory downward. It keeps every directory on its way open without letting
/// others delete or rename it, so the path to the last one stays what it was when it was checked.
class Descent {
public:
    Descent() = default;
    Descent(Descent const&) = delete;
    Descent& operator=(Descent const&) = delete;
    ~Descent() {
        for (FileHandle const held : held_) {
            closeFile(held);
        }
    }

    /// Goes from directory to the parent directory of the last of names, creating missing ones if
    /// create is set.
    int GoToParent(FileHandle directory, std::vector<std::string> const& names, bool create) {
        std::wstring path;
        int result = pathOf(directory, path);
        path_ = narrow(path);
        for (std::size_t i = 0; i + 1 < names.size() && result == 0; ++i) {
            result = Enter(names[i], create);
        }
        return result;
    }

    /// The path of a name in the directory reached.
    std::string PathOf(std::string const& name) const { return path_ + '\\' + name; }

private:
    int Enter(std::string const& name, bool create) {
        path_ = PathOf(name);
        int const made = create ? createFolder(path_.c_str()) : 0;
        if (made != 0 && made != -EEXIST) {
            return made;
        }
        FileHandle opened = noFile;
        int result = hold(path_.c_str(), FILE_FLAG_OPEN_REPARSE_POINT, opened);
        if (result != 0) {
            return result;
        }
        held_.push_back(opened);
        FileStatus status;
        result = statEntry(path_.c_str(), status);
        if (result != 0 || status.type == FileType::directory) {
            return result;
        }
        return status.type == FileType::link ? -ELOOP : -ENOTDIR;
    }

    std::string path_;
    std::vector<FileHandle> held_;
};

/// Calls call(descent, name) in the parent directory of path with the last name of path.
template <class Call>
int inParent(FileHandle directory, char const* path, bool create, Call call) {
    std::vector<std::string> names;
    if (!splitPlainPath(path, reserved, names)) {
        return -EINVAL;
    }
    Descent descent;
    int const result = descent.GoToParent(directory, names, create);
    return result == 0 ? call(descent, names.back()) : result;
}

/// Gives the file at from the name of the file at to, which keeps its permissions.
int replaceFile(char const* from, char const* to) {
    return resultOf(ReplaceFileW(systemPath(to).c_str(), systemPath(from).c_str(), nullptr,
                                 REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr, nullptr) != 0);
}

}  // namespace

int ConfinedDirectory::Open(char const* path) {
    Close();
    FileStatus status;
    int const result = statPath(path, status);
    if (result == 0 && status.type != FileType::directory) {
        return -ENOTDIR;
    }
    return result == 0 ? hold(path, 0, directory_) : result;
}

bool ConfinedDirectory::AllowsName(std::string_view name) const {
    DWORD limit = 0;
    bool const known = GetVolumeInformationByHandleW(reinterpret_cast<HANDLE>(directory_), nullptr,
                                                     0, nullptr, &limit, nullptr, nullptr, 0) != 0;
    return wide(name).size() <= (known && limit > 0 ? limit : 255);
}

int ConfinedDirectory::Stat(char const* path, FileStatus& status) const {
    return inParent(directory_, path, false, [&](Descent const& descent, std::string const& name) {
        return statEntry(descent.PathOf(name).c_str(), status);
    });
}

int ConfinedDirectory::CreatePart(char const* path, char const* part, PartPermissions,
                                  FileHandle& opened) const {
    // Access is controlled by the directory, whose permissions the file inherits.
    return inParent(directory_, path, true, [&](Descent const& descent, std::string const&) {
        HANDLE const file = CreateFileW(
            systemPath(descent.PathOf(part).c_str()).c_str(), GENERIC_READ | GENERIC_WRITE,
            FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, CREATE_NEW,
            FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
        opened = file != INVALID_HANDLE_VALUE ? reinterpret_cast<FileHandle>(file) : noFile;
        return file != INVALID_HANDLE_VALUE ? 0 : negativeLastError();
    });
}

int ConfinedDirectory::RenamePart(char const* path, char const* part, PartPermissions permissions,
                                  bool replace) const {
    return inParent(directory_, path, false, [&](Descent const& descent, std::string const& name) {
        std::string const from = descent.PathOf(part);
        std::string const to = descent.PathOf(name);
        FileStatus status;
        bool const keeps = replace && permissions == PartPermissions::ofTarget &&
                           statEntry(to.c_str(), status) == 0 && status.type == FileType::regular;
        return keeps ? replaceFile(from.c_str(), to.c_str())
                     : renameFile(from.c_str(), to.c_str(), replace);
    });
}

int ConfinedDirectory::RemovePart(char const* path, char const* part) const {
    return inParent(directory_, path, false, [&](Descent const& descent, std::string const&) {
        return removeFile(descent.PathOf(part).c_str());
    });
}

}  // namespace sys::platform
