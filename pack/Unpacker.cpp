#include "pack/Unpacker.h"

#include <cerrno>
#include <set>
#include <string>

#include "core/text/errnoDescription.h"
#include "pack/faults.h"
#include "pack/unpackPath.h"
#include "sys/FileBelow.h"
#include "sys/dir.h"
#include "sys/platform/FilesBelow.h"

namespace pack {

using core::String;

namespace {

/// Paths that differ only in the case of letters are one path on some systems.
std::string folded(String const& path) {
    return std::string(path.LowerCase().View());
}

/// Tells what one file's copy means for all files.
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

}  // namespace

bool Unpacker::Unpack(String const& folder, bool replace, core::ICopyCallback& progress) {
    std::size_t const before = errors_.size();
    PlanPaths();
    RefuseClashes();
    if (errors_.size() == before) {
        RefuseTaken(folder, replace);
    }
    if (errors_.size() > before) {
        return false;
    }
    int result = sys::dir::create(folder, true);
    if (result != 0) {
        errors_.push_back(fileFault("Folder not made", folder, result));
        return false;
    }
    for (int i = 0; i < archive_.FileCount(); ++i) {
        result = Write(i, folder, replace, progress);
        if (result != 0) {
            Refuse(i, core::errnoDescription(-result));
            return false;
        }
    }
    return true;
}

void Unpacker::PlanPaths() {
    paths_.Clear();
    for (int i = 0; i < archive_.FileCount(); ++i) {
        String why;
        paths_.Add(unpackPath(archive_.File(i), why));
        if (!why.IsEmpty()) {
            Refuse(i, why);
        }
    }
}

void Unpacker::RefuseClashes() {
    std::set<std::string> taken;
    for (int i = 0; i < paths_.Count(); ++i) {
        if (!paths_[i].IsEmpty() && !taken.insert(folded(paths_[i])).second) {
            Refuse(i, "another file has the same path");
        }
    }
    for (int i = 0; i < paths_.Count(); ++i) {
        std::string const path = folded(paths_[i]);
        for (auto end = path.find('/'); end != std::string::npos; end = path.find('/', end + 1)) {
            if (taken.count(path.substr(0, end)) > 0) {
                Refuse(i, "another file stands where it needs a folder");
            }
        }
    }
}

void Unpacker::RefuseTaken(String const& folder, bool replace) {
    using sys::platform::FileType;
    for (int i = 0; i < paths_.Count(); ++i) {
        sys::platform::FileStatus status;
        int const result =
            sys::platform::statBelow(folder.getCString(), paths_[i].getCString(), status);
        if (result == -ELOOP) {
            Refuse(i, "a link stands in its way");
        } else if (result == 0 && (!replace || status.type == FileType::directory)) {
            Refuse(i, replace ? "a folder has its name" : "it is there already");
        } else if (result != 0 && result != -ENOENT) {
            Refuse(i, core::errnoDescription(-result));
        }
    }
}

int Unpacker::Write(int index, String const& folder, bool replace, core::ICopyCallback& progress) {
    sys::FileBelow target;
    int const result = target.Create(folder, paths_[index]);
    if (result != 0) {
        return result;
    }
    core::ClassRef<core::Stream> const data = archive_.OpenData(index);
    ProgressOfAll all(progress, archive_, index);
    long long const copied = data ? data->CopyTo(target, false, false, &all) : -EIO;
    return copied < 0 ? static_cast<int>(copied) : target.TakeOver(replace);
}

void Unpacker::Refuse(int index, String const& why) {
    core::StreamDescriptor const& file = archive_.File(index);
    bool const named = file.GetDestination().IsEmpty();
    errors_.push_back(core::fault("File not unpacked", "file[%1], \"%2\": %3", index,
                                  named ? file.GetName() : file.GetDestination(), why));
}

}  // namespace pack
