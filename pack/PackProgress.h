#pragma once

#include "core/console/ProgressLine.h"
#include "core/stream/ICopyCallback.h"
#include "core/text/String.h"

namespace pack {

/// Reports long work on the console, in a line that is overwritten in place; short work prints
/// nothing. Cancels the work once the application is requested to terminate.
class PackProgress : public core::ICopyCallback {
public:
    /// verb names the work, such as "Packed"; an empty one prints no reports.
    explicit PackProgress(core::String const& verb) : verb_(verb) {}

    bool Copied(long long done, long long total) override;
    /// Prints the line that replaces the reports when the work is done.
    void Finish(core::String const& text) { line_.Show(text); }

private:
    core::String const verb_;
    core::ProgressLine line_;
    long long next_ = 0;
};

/// "1 file", "2 files".
core::String fileCount(int count);
/// A number of bytes for people, in the colour of a report.
core::String sizeInColor(long long bytes, int color);

}  // namespace pack
