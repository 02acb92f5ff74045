#include "pack/Tree.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>

#include "core/runtime/Application.h"
#include "pack/errorText.h"
#include "sys/platform/Files.h"

namespace pack {

using core::String;
using sys::platform::FileStatus;
using sys::platform::FileType;
using Text = core::StreamDescriptor::Text;

bool Tree::Load(String const& directory, core::StreamSequencerBuilder& builder) {
    std::size_t const before = errors_.size();
    // By destination, in the order of their bytes.
    std::map<std::string, unsigned> files;
    std::set<std::string> unread{""};
    while (!unread.empty() && !core::Application::IsTerminationRequested()) {
        std::string const below = unread.extract(unread.begin()).value();
        String const parent = directory.AppendNewPath(below.c_str());
        std::vector<sys::platform::DirectoryEntry> entries;
        FileStatus status;
        int result = sys::platform::statPath(parent.getCString(), status);
        if (result == 0) {
            result = sys::platform::listDirectory(parent.getCString(), entries);
        }
        if (result != 0) {
            errors_.push_back(fileError("Directory not readable", parent, result));
            continue;
        }
        directories_.emplace_back(status.volume, status.number);
        std::sort(entries.begin(), entries.end(),
                  [](auto const& left, auto const& right) { return left.name < right.name; });
        for (sys::platform::DirectoryEntry const& entry : entries) {
            String const path = parent.AppendNewPath(entry.name.c_str());
            result = sys::platform::statEntry(path.getCString(), status);
            if (result != 0) {
                errors_.push_back(fileError("File not readable", path, result));
            } else if (status.type == FileType::directory) {
                unread.insert(below + '/' + entry.name);
            } else if (status.type == FileType::regular) {
                files.emplace(below + '/' + entry.name, status.permissions);
            } else if (status.type == FileType::link) {
                errors_.push_back(core::fault("File not packed", "\"%1\" is a link", path));
            } else {
                errors_.push_back(
                    core::fault("File not packed", "\"%1\" is not a regular file", path));
            }
        }
    }
    if (files.empty() && errors_.size() == before) {
        errors_.push_back(core::fault("Nothing to pack", "\"%1\" contains no files", directory));
    }
    for (auto const& [destination, permissions] : files) {
        String const path = destination.c_str();
        core::StreamDescriptor& file = builder.AddFile(directory.AppendNewPath(path));
        file.SetText(Text::name, path.RightBy('/'));
        file.SetText(Text::destination, path);
        file.SetAttributes(permissions);
    }
    return errors_.size() == before && unread.empty();
}

bool Tree::Contains(String const& path) const {
    String const parent = path.GetFilePath();
    FileStatus status;
    return sys::platform::statPath(parent.IsEmpty() ? "." : parent.getCString(), status) == 0 &&
           std::find(directories_.begin(), directories_.end(),
                     Identity(status.volume, status.number)) != directories_.end();
}

}  // namespace pack
