#include "sys/AtomicFile.h"

#include <cerrno>
#include <random>
#include <string>

#include "core/stream/FileStream.h"
#include "core/text/message.h"
#include "sys/file.h"

namespace sys {

using platform::PartPermissions;

namespace {

/// A name that no archive can predict: one of its files could have the name otherwise.
core::String randomName() {
    std::random_device random;
    return core::message(".part-%1-%2", random(), random());
}

/// Replaces target by the file that it links to; a dangling link stays the target.
int followLinks(core::String& target) {
    std::string resolved;
    int const result = platform::resolvePath(target.getCString(), resolved);
    if (result == 0) {
        target = resolved.c_str();
    }
    return result == -ENOENT ? 0 : result;
}

int checkTarget(core::String const& target) {
    platform::FileStatus status;
    int const result = platform::statPath(target.getCString(), status);
    if (result != 0) {
        return result == -ENOENT ? 0 : result;
    }
    if (status.type == platform::FileType::directory) {
        return -EISDIR;
    }
    if (status.type != platform::FileType::regular) {
        return -ENOTSUP;
    }
    // Permission to change the directory would allow replacing a write-protected file.
    core::FileStream probe;
    return probe.Open(target, platform::openWrite);
}

}  // namespace

AtomicFile::~AtomicFile() {
    Discard();
}

char const* AtomicFile::ClassName() const {
    return "AtomicFile";
}

int AtomicFile::Create(core::String const& target, PartPermissions permissions) {
    Discard();
    if (target.IsEmpty()) {
        return -ENOENT;
    }
    core::String file = target;
    int result = followLinks(file);
    if (result == 0) {
        result = checkTarget(file);
    }
    core::String const directory = file.GetFilePath();
    if (result == 0) {
        result = own_.Open(directory.IsEmpty() ? "." : directory.getCString());
    }
    if (result != 0) {
        return result;
    }
    directory_ = &own_;
    return CreatePart(file.GetFileName(), permissions);
}

int AtomicFile::CreateConfined(platform::ConfinedDirectory const& directory,
                               core::String const& path) {
    Discard();
    directory_ = &directory;
    return CreatePart(path, PartPermissions::ofTarget);
}

int AtomicFile::CreateNameless() {
    Discard();
    int result = own_.Open(file::getTempPath().getCString());
    if (result != 0) {
        return result;
    }
    directory_ = &own_;
    result = CreatePart("nameless", PartPermissions::ownerOnly);
    if (result == 0 && own_.RemovePart(path_.getCString(), part_.getCString()) == 0) {
        part_.Clear();
    }
    return result;
}

int AtomicFile::Commit(Existing existing, Durable durable) {
    if (part_.IsEmpty()) {
        return -EBADF;
    }
    int result = durable == Durable::yes ? Sync() : 0;
    // Even after a failure: an open file cannot be deleted everywhere.
    int const closed = Close();
    result = result == 0 ? closed : result;
    if (result == 0) {
        result = directory_->RenamePart(path_.getCString(), part_.getCString(), permissions_,
                                        existing == Existing::replace);
    }
    if (result == 0) {
        part_.Clear();
    }
    return result;
}

int AtomicFile::CreatePart(core::String const& path, PartPermissions permissions) {
    path_ = path;
    permissions_ = permissions;
    // Assigned before the file exists: an allocation that fails later cannot leave it behind.
    part_ = randomName();
    platform::FileHandle opened = platform::noFile;
    int const result =
        directory_->CreatePart(path_.getCString(), part_.getCString(), permissions, opened);
    if (result == 0) {
        Adopt(opened);
    } else {
        part_.Clear();
    }
    return result;
}

void AtomicFile::Discard() {
    Close();
    if (!part_.IsEmpty()) {
        directory_->RemovePart(path_.getCString(), part_.getCString());
        part_.Clear();
    }
}

}  // namespace sys
