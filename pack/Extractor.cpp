#include "pack/Extractor.h"

#include <algorithm>
#include <cerrno>

#include "pack/errorText.h"
#include "pack/extractionPaths.h"
#include "sys/dir.h"

namespace pack {

using core::String;
using sys::platform::ConfinedDirectory;

namespace {

/// Reports the progress of one file's copy as that of all files.
class TotalProgress : public core::ICopyCallback {
public:
    TotalProgress(core::ICopyCallback& progress, core::StreamSequencerReader const& archive,
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

bool Extractor::Extract(String const& path, Existing existing, core::ICopyCallback& progress) {
    std::size_t const before = errors_.size();
    paths_ = extractionPaths(archive_, [this](int index, String const& reason) {
        Reject(static_cast<std::size_t>(index), reason);
    });
    RejectLongNames(path);
    ConfinedDirectory directory;
    bool opened = directory.Open(path.getCString()) == 0;
    if (opened && errors_.size() == before) {
        RejectExisting(directory, existing);
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
            errors_.push_back(fileError("Directory not created", path, result));
            return false;
        }
    }
    for (std::size_t i = 0; i < paths_.size(); ++i) {
        int const result = Write(i, directory, existing, progress);
        if (result != 0) {
            Reject(i, reasonOf(result));
            return false;
        }
    }
    return true;
}

void Extractor::RejectLongNames(String const& path) {
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
            Reject(i, "a name is too long for the file system");
        }
    }
}

void Extractor::RejectExisting(ConfinedDirectory const& directory, Existing existing) {
    using sys::platform::FileType;
    for (std::size_t i = 0; i < paths_.size(); ++i) {
        sys::platform::FileStatus status;
        int const result = directory.Stat(paths_[i].getCString(), status);
        if (result == -ELOOP) {
            Reject(i, "a link is in its path");
        } else if (result == 0 && existing == Existing::keep) {
            Reject(i, "it already exists");
        } else if (result == 0 && status.type == FileType::directory) {
            Reject(i, "a directory has its name");
        } else if (result == 0 && status.type != FileType::regular) {
            Reject(i, "it already exists and is not a regular file");
        } else if (result != 0 && result != -ENOENT) {
            Reject(i, reasonOf(result));
        }
    }
}

int Extractor::Write(std::size_t index, ConfinedDirectory const& directory, Existing existing,
                     core::ICopyCallback& progress) {
    sys::AtomicFile target;
    int const result = target.CreateConfined(directory, paths_[index]);
    if (result != 0) {
        return result;
    }
    int const file = static_cast<int>(index);
    core::ClassRef<core::Stream> const data = archive_.OpenData(file);
    TotalProgress total(progress, archive_, file);
    if (!total.Copied(0, 0)) {
        return -ECANCELED;  // the copy of an empty file does not call back
    }
    long long const copied = data ? data->CopyTo(target, {.callback = &total}) : -EIO;
    // Not durable: there can be thousands of files.
    return copied < 0 ? static_cast<int>(copied)
                      : target.Commit(existing, sys::AtomicFile::Durable::no);
}

void Extractor::Reject(std::size_t index, String const& reason) {
    core::StreamDescriptor const& file = archive_.File(static_cast<int>(index));
    String const& destination = file.GetDestination();
    errors_.push_back(core::fault("File not extracted", "file[%1], \"%2\": %3", index,
                                  destination.IsEmpty() ? file.GetName() : destination, reason));
}

}  // namespace pack
