#pragma once

#include <initializer_list>

#include "core/runtime/CountDownTimer.h"
#include "core/text/String.h"
#include "core/text/json.h"
#include "core/time/Time.h"

namespace job {

/// Formats the events of a run as JSON lines; see docs/json.md. Not thread-safe.
class JsonLines {
public:
    /// device is the name of the device in all lines.
    void SetDevice(core::String const& device) { device_ = device; }
    /// The number of the current attempt; 0 before the first one.
    void SetAttempt(int attempt) { attempt_ = attempt; }

    /// Returns the milliseconds since the construction.
    long long Elapsed() const { return static_cast<long long>(start_.Elapsed()); }
    /// Returns the line of an event, with its line feed: at most 4,095 bytes.
    core::String Line(char const* event, std::initializer_list<core::JsonMember> members) const;

private:
    core::CountDownTimer start_{0ULL};
    core::String device_;
    int attempt_ = 0;
};

/// Returns text as a value of limited length: a long text ends in "...".
[[nodiscard]] core::JsonValue shortJson(core::String const& text);
/// Returns a time in seconds, with three decimals.
[[nodiscard]] core::JsonValue seconds(long long milliseconds);
/// Returns a time in UTC, as RFC 3339 has it.
[[nodiscard]] core::String utcTime(core::Time const& time);

}  // namespace job
