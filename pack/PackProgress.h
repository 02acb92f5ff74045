#pragma once

#include "core/stream/ICopyCallback.h"
#include "core/text/String.h"

namespace pack {

/// Reports long work on the console, in a line that is overwritten in place; short work prints
/// nothing. Cancels the work once the application is requested to terminate.
class PackProgress : public core::ICopyCallback {
public:
    /// verb names the work, such as "Packed"; an empty one prints no reports. Its reports begin on
    /// a line of their own.
    explicit PackProgress(core::String const& verb);

    bool Copied(long long done, long long total) override;

private:
    core::String const verb_;
    long long next_ = 0;
};

/// "1 file", "2 files".
core::String fileCount(int count);
/// A number of bytes for people, in the colour of a report.
core::String sizeInColor(long long bytes, int color);

}  // namespace pack
