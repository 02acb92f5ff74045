#pragma once

#include "core/console/ProgressLine.h"
#include "core/stream/ICopyCallback.h"
#include "core/text/String.h"

namespace pack {

/// Reports long work on the console, a line that is overwritten in place. Short work stays silent.
class PackProgress : public core::ICopyCallback {
public:
    /// verb says what is done: "Packed".
    explicit PackProgress(core::String const& verb) : verb_(verb) {}

    bool Copied(long long done, long long total) override;
    /// Writes the line that stands in the place of the reports when the work is done.
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
