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

/// A walk from a folder downward. It keeps every folder on its way open without letting others
/// delete or rename it, so that the path to the last one stays what it was when it was looked at.
class Descent {
public:
    explicit Descent(char const* folder) : path_(folder) {}
    Descent(Descent const&) = delete;
    Descent& operator=(Descent const&) = delete;
    ~Descent() {
        for (HANDLE const held : held_) {
            CloseHandle(held);
        }
    }

    /// Goes to the folder that the last of names is in, and makes missing ones when create is set.
    int GoToParent(std::vector<std::string> const& names, bool create) {
        int result = Hold(0);
        for (std::size_t i = 0; i + 1 < names.size() && result == 0; ++i) {
            result = Enter(names[i], create);
        }
        return result;
    }

    /// The path of a name in the folder reached.
    std::string PathOf(std::string const& name) const { return path_ + '\\' + name; }

private:
    int Enter(std::string const& name, bool create) {
        path_ = PathOf(name);
        int const made = create ? createFolder(path_.c_str()) : 0;
        if (made != 0 && made != -EEXIST) {
            return made;
        }
        int result = Hold(FILE_FLAG_OPEN_REPARSE_POINT);
        FileStatus status;
        if (result == 0) {
            result = statEntry(path_.c_str(), status);
        }
        if (result != 0 || status.type == FileType::directory) {
            return result;
        }
        return status.type == FileType::link ? -ELOOP : -ENOTDIR;
    }

    /// Keeps the folder open; flags may say that a link is not followed.
    int Hold(DWORD flags) {
        HANDLE const folder =
            CreateFileW(systemPath(path_.c_str()).c_str(), FILE_LIST_DIRECTORY,
                        FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                        FILE_FLAG_BACKUP_SEMANTICS | flags, nullptr);
        if (folder == INVALID_HANDLE_VALUE) {
            return negativeLastError();
        }
        held_.push_back(folder);
        return 0;
    }

    std::string path_;
    std::vector<HANDLE> held_;
};

/// Does call with the path of what stands at path below folder.
template <class Call>
int inParent(char const* folder, char const* path, bool create, Call call) {
    std::vector<std::string> names;
    if (!splitPlainPath(path, reserved, names)) {
        return -EINVAL;
    }
    Descent descent(folder);
    int const result = descent.GoToParent(names, create);
    return result == 0 ? call(descent, descent.PathOf(names.back())) : result;
}

}  // namespace

int statBelow(char const* folder, char const* path, FileStatus& status) {
    return inParent(folder, path, false, [&](Descent const&, std::string const& entry) {
        return statEntry(entry.c_str(), status);
    });
}

int createBelow(char const* folder, char const* path, FileHandle& opened) {
    return inParent(folder, path, true, [&](Descent const&, std::string const& entry) {
        HANDLE const file =
            CreateFileW(systemPath(entry.c_str()).c_str(), GENERIC_WRITE,
                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, CREATE_NEW,
                        FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
        opened = file != INVALID_HANDLE_VALUE ? reinterpret_cast<FileHandle>(file) : noFile;
        return file != INVALID_HANDLE_VALUE ? 0 : negativeLastError();
    });
}

int renameBelow(char const* folder, char const* path, char const* name, bool replace) {
    return inParent(folder, path, false, [&](Descent const& descent, std::string const& entry) {
        std::vector<std::string> names;
        bool const plain = splitPlainPath(name, reserved, names) && names.size() == 1;
        return plain ? renameFile(entry.c_str(), descent.PathOf(name).c_str(), replace) : -EINVAL;
    });
}

int removeBelow(char const* folder, char const* path) {
    return inParent(folder, path, false, [](Descent const&, std::string const& entry) {
        return removeFile(entry.c_str());
    });
}

}  // namespace sys::platform
