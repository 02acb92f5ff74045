#include <cerrno>

#include "sys/AtomicFile.h"
#include "sys/file.h"
#include "sys/openRegular.h"

namespace sys::file {

namespace {

/// Copies source, which is closed then, into a file that takes the name to: 0, or a negative error
/// code.
int copyInto(core::String const& to, bool replace, core::FileStream& source, bool sparse, bool sync,
             core::ICopyCallback* callback) {
    AtomicFile target;
    int const created = target.Create(to);
    if (created != 0) {
        return created;
    }
    long long const copied =
        source.CopyTo(target, {.sparse = sparse, .sync = sync, .callback = callback});
    if (copied < 0) {
        return static_cast<int>(copied);
    }
    target.CopyPermissionsFrom(source);
    source.Close();  // which may be what is replaced, and some systems replace no open file
    return target.Commit(replace ? AtomicFile::Existing::replace : AtomicFile::Existing::keep,
                         AtomicFile::Durable::no);  // unless sync is set, and then CopyTo did
}

/// Moves a regular file to another file system.
int moveAcross(core::String const& from, core::String const& to, bool replace) {
    if (!replace && getType(to) != Type::none) {
        return -EEXIST;
    }
    core::FileStream source;
    int result = openRegular(source, from);
    if (result == 0) {
        result = copyInto(to, replace, source, true, true, nullptr);
    }
    return result == 0 ? remove(from) : result;
}

}  // namespace

int copy(core::String const& from, core::String const& to, bool sparse, bool sync,
         core::ICopyCallback* callback) {
    core::FileStream source;
    int const result = openRegular(source, from);
    return result == 0 ? copyInto(to, true, source, sparse, sync, callback) : result;
}

int rename(core::String const& from, core::String const& to, bool replace) {
    int const result = platform::renameFile(from.getCString(), to.getCString(), replace);
    bool const across = result == -EXDEV && getType(from) == Type::regular;
    return across ? moveAcross(from, to, replace) : result;
}

}  // namespace sys::file
