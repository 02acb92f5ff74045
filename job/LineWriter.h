#pragma once

#include <memory>

#include "core/text/String.h"
#include "sys/platform/Terminal.h"

namespace job {

/// Writes to a standard stream on a thread of its own, so that a reader that is slow, or has
/// stopped reading, never delays the caller. If no thread can be started, it writes on the
/// caller's. Thread-safe.
class LineWriter {
public:
    /// Throws nothing but std::bad_alloc.
    explicit LineWriter(sys::platform::StandardStream stream);
    LineWriter(LineWriter const&) = delete;
    LineWriter& operator=(LineWriter const&) = delete;
    /// Does not wait: what is not written by then is lost.
    ~LineWriter() = default;

    /// Queues text, which is then written at once. Drops it if 64 KiB are queued.
    void Write(core::String const& text);
    /// Queues text that the next one of its kind will replace. Returns false if 4 KiB are queued.
    bool WriteProgress(core::String const& text);
    /// Waits up to ms milliseconds until all queued text is written, then drops the rest.
    void Drain(int ms);
    /// Returns how many texts Write and Drain dropped, or could not be written.
    int Dropped() const;

private:
    struct State;
    std::shared_ptr<State> state_;  ///< shared with the thread, which may block for ever
};

}  // namespace job
