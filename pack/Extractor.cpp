#include "pack/Extractor.h"

#include <algorithm>
#include <cerrno>
#include <numeric>

#include "core/text/StringArray.h"
#include "core/text/unicode.h"
#include "pack/errorText.h"
#include "sys/dir.h"

namespace pack {

using core::String;
using sys::platform::ConfinedDirectory;

namespace {

/// Not part of any name, and less than all characters of names, so that all paths below a path
/// follow it when sorted.
char const separator[] = "\1";

/// Whether Windows reserves the name for a device, in any directory and with any extension. Its
/// digits include superscript 1, 2 and 3.
bool isReservedName(String const& name) {
    String const stem = name.LeftOf('.').IsEmpty() ? name : name.LeftOf('.');
    String const device = stem.TrimRight().UpperCase();
    for (char const* const plain : {"CON", "PRN", "AUX", "NUL", "CLOCK$", "CONIN$", "CONOUT$"}) {
        if (device == plain) {
            return true;
        }
    }
    if (!device.StartsWith("COM") && !device.StartsWith("LPT")) {
        return false;
    }
    String const digit = device.Copy(3);
    bool const plain = digit.GetLength() == 1 && String::IsNumeric(digit.FirstChar());
    return plain || digit == "\u00B9" || digit == "\u00B2" || digit == "\u00B3";
}

/// Returns the error of a name in a path; empty if it is valid.
String nameError(String const& name) {
    if (name == "..") {
        return "it contains ..";
    }
    if (name.LastChar() == '.' || name.LastChar() == ' ') {
        return "a name ends with a dot or space";
    }
    for (char const c : name.View()) {
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F ||
            std::string_view("\\:*?\"<>|").find(c) != std::string_view::npos) {
            return "a name has a non-portable character";
        }
    }
    return isReservedName(name) ? "a name is reserved" : "";
}

/// Returns a key that is equal for paths that are the same on some platform: those that differ only
/// in case.
String sortKey(String const& path) {
    return core::unicode::foldCase(path.View()).Replace("/", separator);
}

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

String extractionPath(core::StreamDescriptor const& file, String& error) {
    String path = file.GetDestination();
    if (path.IsEmpty() || path.LastChar() == '/') {
        path += file.GetName();
    }
    path = path.RemoveDuplicatedPathDelimiters(sys::posixPathStyle)
               .ForceNoLeadingPathDelimiter(sys::posixPathStyle);
    core::StringArray names(16);
    path.Split(names, '/');
    error = path.IsEmpty() || path.LastChar() == '/' ? "it does not name a file" : "";
    for (int i = 0; i < names.Count() && error.IsEmpty(); ++i) {
        error = nameError(names[i]);
    }
    return error.IsEmpty() ? path : String();
}

bool Extractor::Extract(String const& path, Existing existing, core::ICopyCallback& progress) {
    std::size_t const before = errors_.size();
    ResolvePaths();
    RejectDuplicates();
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

void Extractor::ResolvePaths() {
    paths_.clear();
    for (int i = 0; i < archive_.FileCount(); ++i) {
        String error;
        paths_.push_back(extractionPath(archive_.File(i), error));
        if (!error.IsEmpty()) {
            Reject(paths_.size() - 1, error);
        }
    }
}

void Extractor::RejectDuplicates() {
    std::vector<String> keys;
    for (String const& path : paths_) {
        keys.push_back(sortKey(path));
    }
    std::vector<std::size_t> order(keys.size());
    std::iota(order.begin(), order.end(), 0);
    // By views: comparing strings would treat bytes beyond ASCII as less than the separator.
    std::stable_sort(order.begin(), order.end(), [&](std::size_t one, std::size_t other) {
        return keys[one].View() < keys[other].View();
    });
    std::vector<char const*> conflicts(keys.size(), nullptr);
    String file;  ///< the last path that is not below another one
    for (std::size_t const index : order) {
        String const& key = keys[index];
        if (key.IsEmpty()) {
            continue;
        }
        if (key == file) {
            conflicts[index] = "another file has the same path";
        } else if (!file.IsEmpty() && key.StartsWith(file + separator)) {
            conflicts[index] = "a file has its directory's path";
        } else {
            file = key;
        }
    }
    for (std::size_t i = 0; i < conflicts.size(); ++i) {
        if (conflicts[i] != nullptr) {
            Reject(i, conflicts[i]);
        }
    }
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
    paths_[index].Clear();
}

}  // namespace pack
