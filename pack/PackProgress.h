#pragma once

#include "core/console/Console.h"
#include "core/stream/ICopyCallback.h"
#include "core/text/String.h"

namespace pack {

/// Prints the progress of long work, in one line that it overwrites. Cancels the work when
/// termination of the application is requested.
class PackProgress : public core::ICopyCallback {
public:
    /// verb names the work, such as "Packed"; if it is empty, nothing is printed.
    explicit PackProgress(core::String const& verb);

    bool Copied(long long done, long long total) override;

private:
    core::String const verb_;
    long long next_ = 0;
};

/// Returns "1 file", "2 files" and so on.
core::String fileCount(int count);
/// Returns a size such as "1.5 MB", in the colour.
core::String sizeInColor(long long bytes, core::Console::Color color);

}  // namespace pack
