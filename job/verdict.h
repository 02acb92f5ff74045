#pragma once

#include <cstdint>
#include <optional>

#include "core/text/message.h"
#include "update/session/Outcome.h"

/// What a run says about itself: errors, outcomes and what to do next. All strings are static.
namespace job {

/// The step of a run, in order.
enum class Step {
    commandLine,
    file,
    connection,
    request,
    header,
    transfer,
    trailer,
    waiting,
    done,
};

/// Returns the name of the step, as JSON lines spell it.
char const* nameOf(Step step);

/// An error of a run.
struct Error {
    char const* cause;  ///< the word for scripts; see docs/ravelink-job.md
    core::Fault fault;
    Step step;
    std::optional<std::uint32_t> status = {};  ///< reported by the device
    bool isTransient = false;                  ///< whether another attempt may succeed
};

/// Returns the error of a failed session.
[[nodiscard]] Error errorOf(update::Failure const& failure);

/// A signal that ended a run; the values are those of POSIX, on every system.
enum class Signal { none = 0, interrupt = 2, terminate = 15 };

/// How a run ended.
struct Verdict {
    char const* outcome;
    int exitStatus;
    char const* powerOff;      ///< whether to switch the device off: yes, avoid, no or must
    char const* advice;        ///< what to do next, a sentence
    bool isTransient = false;  ///< whether a run with the same arguments may succeed
};

/// Returns the verdict of a run. error is null if the update is complete; restart is then the
/// device's RestartKind. trailerBegun is whether the device can have received the trailer.
[[nodiscard]] Verdict verdictOf(Error const* error, bool trailerBegun, std::uint32_t restart,
                                Signal signal);

/// Returns the last line of a run for people.
[[nodiscard]] core::String resultLine(Verdict const& verdict, Error const* error);

}  // namespace job
