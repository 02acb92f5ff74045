#pragma once

#include <optional>

#include "core/stream/FileStream.h"
#include "core/text/String.h"
#include "job/verdict.h"

namespace job {

/// A file that JSON lines are appended to, and that one run at a time may use. Not thread-safe.
class LogFile {
public:
    /// Opens or creates the file, which must not be that at origin, and locks it as long as it is
    /// open. Returns the error if that is not possible.
    [[nodiscard]] std::optional<Error> Open(core::String const& path, core::String const& origin);
    void Close() { stream_.Close(); }
    bool IsOpen() const { return stream_.IsOpened(); }

    /// Appends a line, with its line feed, after one that could not be written as a whole. Returns
    /// false on failure.
    bool Write(core::String const& line);
    /// Waits until all lines are on disk. Returns false on failure.
    bool Sync();

private:
    core::FileStream stream_;
    bool isTorn_ = false;  ///< whether the last line lacks its line feed
};

/// Returns the error of a log that cannot be written.
[[nodiscard]] Error logUnwritable(core::String const& path);

}  // namespace job
