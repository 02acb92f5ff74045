#pragma once

#include "core/text/String.h"
#include "sys/platform/Terminal.h"

namespace program {

/// A line of a terminal that is redrawn in place to show progress. It writes nothing: its functions
/// return the text that the caller writes to the stream next. Not thread-safe.
class ProgressLine {
public:
    explicit ProgressLine(sys::platform::StandardStream stream);

    /// Whether the stream is a terminal that can redraw a line. Otherwise all texts are empty.
    bool IsShown() const { return isTerminal_; }
    /// Returns the text that replaces the line by text, truncated to the width of the terminal.
    core::String Redraw(core::String const& text);
    /// Returns the text that removes the line; empty if there is none.
    core::String Erase();

    /// Returns the content of the line for work that has done some of total bytes, such as
    /// "  Sending [####............]  25%  1.9 of 7.6 MiB  1.1 MiB/s  0:05 left". rate is in
    /// bytes/s. Narrow terminals have no bar.
    core::String TransferText(char const* verb, long long done, long long total,
                              long long rate) const;

private:
    core::String BarOf(int percent) const;

    bool const isTerminal_;
    int const width_;  ///< columns
    int drawn_ = 0;    ///< characters of the line
};

/// Returns a time as "M:SS".
[[nodiscard]] core::String minutesAndSeconds(long long seconds);

}  // namespace program
