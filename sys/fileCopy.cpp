#include <cerrno>

#include "core/stream/FileStream.h"
#include "sys/AtomicFile.h"
#include "sys/file.h"

namespace sys::file {

namespace {

using Existing = AtomicFile::Existing;

/// Copies source to the path to, and closes source. Returns 0 or a negative errno value.
int copyInto(core::String const& to, Existing existing, core::FileStream& source,
             core::CopyOptions const& options) {
    AtomicFile target;
    int const created = target.Create(to);
    if (created != 0) {
        return created;
    }
    long long const copied = source.CopyTo(target, options);
    if (copied < 0) {
        return static_cast<int>(copied);
    }
    target.CopyPermissionsFrom(source);
    // Source and target may be the same file, and Windows cannot replace an open one.
    source.Close();
    // Not durable, unless the options have made CopyTo flush the data.
    return target.Commit(existing, AtomicFile::Durable::no);
}

/// Moves a regular file to another file system.
int moveAcross(core::String const& from, core::String const& to, Existing existing) {
    if (existing == Existing::keep && getType(to) != Type::none) {
        return -EEXIST;
    }
    core::FileStream source;
    int result = openRegularFile(source, from);
    if (result == 0) {
        result = copyInto(to, existing, source, {.sparse = true, .sync = true});
    }
    return result == 0 ? remove(from) : result;
}

}  // namespace

int copy(core::String const& from, core::String const& to, bool sparse, bool sync,
         core::ICopyCallback* callback) {
    core::FileStream source;
    int const result = openRegularFile(source, from);
    return result == 0 ? copyInto(to, Existing::replace, source,
                                  {.sparse = sparse, .sync = sync, .callback = callback})
                       : result;
}

int rename(core::String const& from, core::String const& to, bool replace) {
    int const result = platform::renameFile(from.getCString(), to.getCString(), replace);
    bool const across = result == -EXDEV && getType(from) == Type::regular;
    return across ? moveAcross(from, to, replace ? Existing::replace : Existing::keep) : result;
}

}  // namespace sys::file
