#include "job/LineWriter.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <system_error>
#include <thread>

namespace job {

namespace {

// In bytes.
std::size_t const capacity = 65'536;
std::size_t const progressCapacity = 4'096;

}  // namespace

struct LineWriter::State {
    explicit State(sys::platform::StandardStream destination) : stream(destination) {}

    sys::platform::StandardStream const stream;
    std::mutex lock;
    std::condition_variable changed;
    std::deque<core::String> queue;  ///< the first one is being written
    std::size_t bytes = 0;
    int dropped = 0;
    bool hasThread = true;

    void WriteAll();
    bool WriteNow(core::String const& text) const {
        return sys::platform::writeStandardStream(stream, text.getCString(),
                                                  static_cast<std::size_t>(text.GetLength()));
    }
    void Queue(core::String const& text);
};

void LineWriter::State::WriteAll() {
    std::unique_lock locked(lock);
    for (;;) {
        changed.wait(locked, [this] { return !queue.empty(); });
        // Only this thread removes texts, and a deque keeps the others in place.
        core::String const& text = queue.front();
        locked.unlock();
        bool const written = WriteNow(text);
        locked.lock();
        dropped += written ? 0 : 1;
        bytes -= static_cast<std::size_t>(text.GetLength());
        queue.pop_front();
        changed.notify_all();
    }
}

void LineWriter::State::Queue(core::String const& text) {
    if (!hasThread) {
        dropped += WriteNow(text) ? 0 : 1;
        return;
    }
    core::String own = text;
    own.Unique();
    bytes += static_cast<std::size_t>(own.GetLength());
    queue.push_back(std::move(own));
    changed.notify_all();
}

LineWriter::LineWriter(sys::platform::StandardStream stream)
    : state_(std::make_shared<State>(stream)) {
    // The thread never ends: a write to a pipe without a reader cannot be cancelled.
    try {
        std::thread([state = state_] { state->WriteAll(); }).detach();
    } catch (std::system_error const&) {
        state_->hasThread = false;
    }
}

void LineWriter::Write(core::String const& text) {
    std::lock_guard const locked(state_->lock);
    if (state_->bytes + static_cast<std::size_t>(text.GetLength()) > capacity) {
        ++state_->dropped;
    } else {
        state_->Queue(text);
    }
}

bool LineWriter::WriteProgress(core::String const& text) {
    std::lock_guard const locked(state_->lock);
    if (state_->bytes >= progressCapacity) {
        return false;
    }
    state_->Queue(text);
    return true;
}

void LineWriter::Drain(int ms) {
    std::unique_lock locked(state_->lock);
    state_->changed.wait_for(locked, std::chrono::milliseconds(ms),
                             [this] { return state_->queue.empty(); });
    // The first one stays: it is being written.
    while (state_->queue.size() > 1) {
        state_->bytes -= static_cast<std::size_t>(state_->queue.back().GetLength());
        state_->queue.pop_back();
        ++state_->dropped;
    }
}

int LineWriter::Dropped() const {
    std::lock_guard const locked(state_->lock);
    return state_->dropped;
}

}  // namespace job
