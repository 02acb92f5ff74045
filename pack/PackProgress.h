#pragma once

#include "core/console/Console.h"
#include "core/stream/ICopyCallback.h"
#include "core/text/String.h"
#include "program/ProgressLine.h"
#include "program/TransferMeter.h"

namespace pack {

/// Shows the progress of work that takes seconds as a line on a terminal, and nothing elsewhere.
/// Cancels the work when termination of the application is requested.
class PackProgress : public core::ICopyCallback {
public:
    enum class Output { terminal, none };

    /// verb names the work, such as "Packing".
    explicit PackProgress(char const* verb, Output output = Output::terminal);
    PackProgress(PackProgress const&) = delete;
    PackProgress& operator=(PackProgress const&) = delete;
    /// Removes the line.
    ~PackProgress() override;

    bool Copied(long long done, long long total) override;

private:
    char const* const verb_;
    Output const output_;
    program::ProgressLine line_;
    program::TransferMeter meter_;
};

/// Returns "1 file", "2 files" and so on.
core::String fileCount(int count);
/// Returns a size such as "1.5 MB", in the colour.
core::String sizeInColor(long long bytes, core::Console::Color color);

}  // namespace pack
