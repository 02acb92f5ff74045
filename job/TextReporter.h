#pragma once

#include "core/text/String.h"
#include "job/LineWriter.h"
#include "program/ProgressLine.h"
#include "update/session/LineReporter.h"

namespace job {

/// Prints a run for people: the lines of ravelink, and the progress as a line that is redrawn in
/// place on a terminal, or as a line for each tenth elsewhere. Not thread-safe.
class TextReporter : public update::LineReporter {
public:
    /// What is printed.
    enum class Content { nothing, progressOnTerminal, everything };

    /// Prints to the stream of the writer, which must outlive the reporter.
    TextReporter(LineWriter& writer, sys::platform::StandardStream stream, Content content);

    /// Begins an attempt.
    void OnConnecting(core::IPv4Address const& device) override;
    void OnSent(int /*bytes*/, int /*fileSize*/) override {}
    /// Shows the progress of the transfer. rate is in bytes/s; stalled is the time since the
    /// device accepted a byte, elapsed that since the start of the transfer, in ms.
    void ShowSending(int bytes, int fileSize, long long rate, long long stalled, long long elapsed);
    /// Shows the pause before the attempt of this number.
    void ShowPause(int seconds, int number, int count);
    /// Shows that the device is working, for elapsed of at most limit ms since the trailer.
    void ShowWaiting(long long elapsed, long long limit);
    /// Removes the line that is redrawn, if there is one.
    void EndProgress();

    void Print(core::String const& line) override;

protected:
    void PrintProgress(core::String const& line) override { Print(line); }

private:
    void Draw(core::String const& text);

    LineWriter& writer_;
    Content content_;
    program::ProgressLine line_;
    int tenths_ = 0;          ///< that have a line
    long long nextLine_ = 0;  ///< ms since the start of the transfer
};

}  // namespace job
