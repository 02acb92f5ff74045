// The confined paths of both platforms. Files.cpp includes this once, after it has defined class
// Descent, reservedCharacters and Missing.

namespace sys::platform {

namespace {

/// Splits a confined path into its names. Returns false if a name is empty, ".", ".." or contains a
/// reserved character.
bool splitConfinedPath(std::string_view path, std::vector<std::string>& names) {
    for (;;) {
        std::size_t const end = path.find('/');
        std::string_view const name = path.substr(0, end);
        if (name.empty() || name == "." || name == ".." ||
            name.find_first_of(reservedCharacters) != name.npos) {
            return false;
        }
        names.emplace_back(name);
        if (end == path.npos) {
            return true;
        }
        path.remove_prefix(end + 1);
    }
}

/// Descends from directory to the parent of path. Returns the result of call(descent, name), where
/// name is the last one of path.
template <class Call>
int inParent(FileHandle directory, char const* path, Missing missing, Call call) {
    std::vector<std::string> names;
    if (!splitConfinedPath(path, names)) {
        return -EINVAL;
    }
    Descent descent;
    int result = descent.Start(directory);
    for (std::size_t i = 0; i + 1 < names.size() && result == 0; ++i) {
        result = descent.Enter(names[i], missing);
    }
    return result == 0 ? call(descent, names.back()) : result;
}

}  // namespace

int ConfinedDirectory::Stat(char const* path, FileStatus& status) const {
    return inParent(
        directory_, path, Missing::fail,
        [&](Descent const& parent, std::string const& name) { return parent.Stat(name, status); });
}

int ConfinedDirectory::CreatePart(char const* path, char const* part, PartPermissions permissions,
                                  FileHandle& opened) const {
    return inParent(directory_, path, Missing::create,
                    [&](Descent const& parent, std::string const& name) {
                        return parent.CreatePart(name, part, permissions, opened);
                    });
}

int ConfinedDirectory::RenamePart(char const* path, char const* part, PartPermissions permissions,
                                  bool replace) const {
    return inParent(directory_, path, Missing::fail,
                    [&](Descent const& parent, std::string const& name) {
                        return parent.RenamePart(name, part, permissions, replace);
                    });
}

int ConfinedDirectory::RemovePart(char const* path, char const* part) const {
    return inParent(directory_, path, Missing::fail,
                    [&](Descent const& parent, std::string const&) { return parent.Remove(part); });
}

}  // namespace sys::platform
