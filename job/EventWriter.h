#pragma once

#include <initializer_list>
#include <optional>

#include "core/runtime/CountDownTimer.h"
#include "core/text/String.h"
#include "core/text/json.h"
#include "core/time/Time.h"
#include "job/LineWriter.h"
#include "job/LogFile.h"

namespace job {

/// Writes the events of a run as JSON lines, described in docs/json.md, to the log and to standard
/// output. A failure of either is an event itself, once, and changes nothing else. Not thread-safe.
class EventWriter {
public:
    using Members = std::initializer_list<core::JsonMember>;

    /// device is the name of the device in all lines. output must outlive the object; null: the
    /// lines go to the log only.
    EventWriter(core::String const& device, LineWriter* output);

    /// Opens the log, which must not be the file at origin, for all later lines. Returns the error
    /// if that is not possible.
    [[nodiscard]] std::optional<Error> OpenLog(core::String const& path,
                                               core::String const& origin);
    /// The number of the current attempt; 0 before the first one.
    void SetAttempt(int attempt) { attempt_ = attempt; }
    /// Returns the milliseconds since the construction.
    long long Elapsed() const { return static_cast<long long>(start_.Elapsed()); }

    /// Writes the first event. Returns false, and closes the log, if the log does not take it.
    [[nodiscard]] bool WriteStart(Members members);
    void Write(char const* event, Members members);
    /// Writes an event that is on the disk of the log when this returns.
    void WriteThrough(char const* event, Members members);
    /// Writes the progress of the transfer, unless the output is behind; to the log less often.
    void WriteProgress(Members members);
    /// Waits up to ms milliseconds until the output has taken all lines, and reports it otherwise.
    /// Returns how many lines it did not take.
    int FinishOutput(int ms);

private:
    core::String Line(char const* event, Members members) const;
    void WriteToLog(core::String const& line);
    void ReportLogFailure();
    void Warn(char const* cause, char const* message);

    core::CountDownTimer const start_{0ULL};
    core::String const device_;
    int attempt_ = 0;
    LineWriter* const output_;
    int skipped_ = 0;  ///< lines of progress that the output did not take
    LogFile log_;
    bool logHasFailed_ = false;
    long long lastLoggedProgress_ = 0;  ///< ms since the start
};

/// Returns text as a value of limited length: a long text ends in "...".
[[nodiscard]] core::JsonValue shortJson(core::String const& text);
/// Returns a time in seconds, with three decimals.
[[nodiscard]] core::JsonValue seconds(long long milliseconds);
/// Returns a time in UTC, as RFC 3339 has it.
[[nodiscard]] core::String utcTime(core::Time const& time);

}  // namespace job
