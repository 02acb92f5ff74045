#pragma once

#include <cstdint>
#include <optional>

#include "core/stream/FileStream.h"
#include "core/text/String.h"
#include "core/time/Time.h"
#include "update/session/Outcome.h"

namespace update {

/// A file that is measured once and stays open, so that all that is sent later comes from the file
/// that was measured, whatever its path then leads to. Not thread-safe.
class UpdateFile {
public:
    /// Opens and measures a regular file from 1 to largestFile bytes. Returns the failure if that
    /// is not possible.
    [[nodiscard]] std::optional<Failure> Open(core::String const& path);

    // These need a successful Open.

    core::FileStream& Stream() { return stream_; }
    core::String const& Path() const { return path_; }
    /// In bytes.
    int Size() const { return size_; }
    std::uint32_t Crc() const { return crc_; }
    /// The time of its last change before it was measured.
    core::Time Modified() const { return modified_; }

private:
    core::FileStream stream_;
    core::String path_;
    int size_ = 0;
    std::uint32_t crc_ = 0;
    core::Time modified_;
};

// The failures of files, in the phase that the session sets.

[[nodiscard]] Failure fileMissing(core::String const& path);
[[nodiscard]] Failure fileNotOpened(core::String const& path);
[[nodiscard]] Failure fileNotRead(core::String const& path);
[[nodiscard]] Failure fileTooBig(core::String const& path);
[[nodiscard]] Failure fileChanged(core::String const& path);

}  // namespace update
