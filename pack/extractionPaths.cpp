#include "pack/extractionPaths.h"

#include <algorithm>
#include <numeric>
#include <string_view>

#include "core/text/StringArray.h"
#include "core/text/unicode.h"

namespace pack {

using core::String;

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

/// Returns the error of each path that is the same as another one or below another one, otherwise
/// null. Ignores empty paths.
std::vector<char const*> findConflicts(std::vector<String> const& paths) {
    std::vector<String> keys;
    keys.reserve(paths.size());
    for (String const& path : paths) {
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
    return conflicts;
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

std::vector<String> extractionPaths(core::StreamSequencer const& archive, Reject const& reject) {
    std::vector<String> paths;
    for (int i = 0; i < archive.FileCount(); ++i) {
        String error;
        paths.push_back(extractionPath(archive.File(i), error));
        if (!error.IsEmpty()) {
            reject(i, error);
        }
    }
    std::vector<char const*> const conflicts = findConflicts(paths);
    for (std::size_t i = 0; i < conflicts.size(); ++i) {
        if (conflicts[i] != nullptr) {
            reject(static_cast<int>(i), conflicts[i]);
            paths[i].Clear();
        }
    }
    return paths;
}

}  // namespace pack
