#include "pack/Unpacker.h"

#include <algorithm>
#include <cerrno>
#include <numeric>

#include "core/text/unicode.h"
#include "pack/faults.h"
#include "pack/unpackPath.h"
#include "sys/AtomicFile.h"
#include "sys/dir.h"

namespace pack {

using core::String;
using sys::platform::ConfinedDirectory;

namespace {

/// No name contains it, and it sorts before every character of a name: a path is followed by all
/// paths below it.
char const separator = '\1';

/// The path in a form that is equal for paths which are one path on some systems: those that differ
/// only in case.
std::string folded(String const& path) {
    std::string key(core::unicode::foldCase(path.View()).View());
    std::replace(key.begin(), key.end(), '/', separator);
    return key;
}

bool isBelow(std::string const& path, std::string const& parent) {
    return path.size() > parent.size() && path[parent.size()] == separator &&
           path.starts_with(parent);
}

/// Reports the progress of one file's copy as that of all files.
class ProgressOfAll : public core::ICopyCallback {
public:
    ProgressOfAll(core::ICopyCallback& progress, core::StreamSequencerReader const& archive,
                  int index)
        : progress_(progress),
          before_(static_cast<long long>(archive.File(index).GetOffset())),
          total_(archive.GetDataSize()) {}

    bool Copied(long long done, long long) override {
        return progress_.Copied(before_ + done, total_);
    }

private:
    core::ICopyCallback& progress_;
    long long const before_;
    long long const total_;
};

/// Opens the directory at path or, if it does not exist, the nearest existing one above it.
void openNearest(ConfinedDirectory& directory, String path) {
    while (directory.Open(path.IsEmpty() ? "." : path.getCString()) == -ENOENT && !path.IsEmpty()) {
        String const parent = path.ForceNoTrailingPathDelimiter().GetFilePath();
        if (parent == path) {
            return;
        }
        path = parent;
    }
}

}  // namespace

bool Unpacker::Unpack(String const& path, bool replace, core::ICopyCallback& progress) {
    std::size_t const before = errors_.size();
    PlanPaths();
    RefuseClashes();
    RefuseLongNames(path);
    ConfinedDirectory directory;
    bool opened = directory.Open(path.getCString()) == 0;
    if (opened && errors_.size() == before) {
        RefuseTaken(directory, replace);
    }
    if (errors_.size() > before) {
        return false;
    }
    if (!opened) {
        int result = sys::dir::create(path, true);
        if (result == 0) {
            result = directory.Open(path.getCString());
        }
        if (result != 0) {
            errors_.push_back(fileFault("Folder not made", path, result));
            return false;
        }
    }
    for (std::size_t i = 0; i < paths_.size(); ++i) {
        int const result = Write(i, directory, replace, progress);
        if (result != 0) {
            Refuse(i, reasonOf(result));
            return false;
        }
    }
    return true;
}

void Unpacker::PlanPaths() {
    paths_.clear();
    for (int i = 0; i < archive_.FileCount(); ++i) {
        String why;
        paths_.push_back(unpackPath(archive_.File(i), why));
        if (!why.IsEmpty()) {
            Refuse(paths_.size() - 1, why);
        }
    }
}

void Unpacker::RefuseClashes() {
    std::vector<std::string> keys;
    for (String const& path : paths_) {
        keys.push_back(folded(path));
    }
    std::vector<std::size_t> order(keys.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t one, std::size_t other) { return keys[one] < keys[other]; });
    std::vector<char const*> clashes(keys.size(), nullptr);
    std::string file;  ///< the last path that is not below another one
    for (std::size_t const index : order) {
        std::string const& key = keys[index];
        if (key.empty()) {
            continue;
        }
        if (key == file) {
            clashes[index] = "another file has the same path";
        } else if (!file.empty() && isBelow(key, file)) {
            clashes[index] = "another file stands where it needs a folder";
        } else {
            file = key;
        }
    }
    for (std::size_t i = 0; i < clashes.size(); ++i) {
        if (clashes[i] != nullptr) {
            Refuse(i, clashes[i]);
        }
    }
}

void Unpacker::RefuseLongNames(String const& path) {
    ConfinedDirectory nearest;
    openNearest(nearest, path);
    for (std::size_t i = 0; i < paths_.size(); ++i) {
        std::string_view rest = paths_[i].View();
        bool fits = true;
        while (fits && !rest.empty()) {
            std::string_view const name = rest.substr(0, rest.find('/'));
            fits = nearest.AllowsName(name);
            rest.remove_prefix(std::min(name.size() + 1, rest.size()));
        }
        if (!fits) {
            Refuse(i, "a name is too long for the file system");
        }
    }
}

void Unpacker::RefuseTaken(ConfinedDirectory const& directory, bool replace) {
    using sys::platform::FileType;
    for (std::size_t i = 0; i < paths_.size(); ++i) {
        sys::platform::FileStatus status;
        int const result = directory.Stat(paths_[i].getCString(), status);
        if (result == -ELOOP) {
            Refuse(i, "a link stands in its way");
        } else if (result == 0 && !replace) {
            Refuse(i, "it is there already");
        } else if (result == 0 && status.type == FileType::directory) {
            Refuse(i, "a folder has its name");
        } else if (result == 0 && status.type != FileType::regular) {
            Refuse(i, "it is there already and is not a regular file");
        } else if (result != 0 && result != -ENOENT) {
            Refuse(i, reasonOf(result));
        }
    }
}

int Unpacker::Write(std::size_t index, ConfinedDirectory const& directory, bool replace,
                    core::ICopyCallback& progress) {
    using sys::AtomicFile;
    AtomicFile target;
    int const result = target.CreateConfined(directory, paths_[index]);
    if (result != 0) {
        return result;
    }
    int const file = static_cast<int>(index);
    core::ClassRef<core::Stream> const data = archive_.OpenData(file);
    ProgressOfAll all(progress, archive_, file);
    if (!all.Copied(0, 0)) {
        return -ECANCELED;  // an empty file is copied without a report
    }
    long long const copied = data ? data->CopyTo(target, {.callback = &all}) : -EIO;
    // Not durable: there can be thousands of files.
    return copied < 0
               ? static_cast<int>(copied)
               : target.Commit(replace ? AtomicFile::Existing::replace : AtomicFile::Existing::keep,
                               AtomicFile::Durable::no);
}

void Unpacker::Refuse(std::size_t index, String const& why) {
    core::StreamDescriptor const& file = archive_.File(static_cast<int>(index));
    bool const named = file.GetDestination().IsEmpty();
    errors_.push_back(core::fault("File not unpacked", "file[%1], \"%2\": %3", index,
                                  named ? file.GetName() : file.GetDestination(), why));
    paths_[index].Clear();
}

}  // namespace pack
