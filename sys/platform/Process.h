#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace sys::platform {

/// Prepares the process for network work; call it once, at start-up. Writes to a closed connection
/// or pipe, and writes beyond the file size limit, fail instead of ending the process. Files and
/// sockets opened later cannot get the number of a standard stream that is closed.
void prepareProcess();

/// Keeps the process running, as long as the operating system allows, after its terminal or console
/// closes.
void ignoreTerminalClose();

/// The arguments of the process in UTF-8, its own name first. Created in main, from its parameters.
class Arguments {
public:
    Arguments(int argc, char const* const* argv);

    int Count() const { return static_cast<int>(values_.size()); }
    /// Returns Count() strings, which are valid as long as this object.
    char const* const* Values() const { return pointers_.data(); }

private:
    static std::vector<std::string> Read(int argc, char const* const* argv);

    std::vector<std::string> const values_;
    std::vector<char const*> pointers_;
};

/// Stores the absolute path of the running program, without links. Returns 0 or a negative errno
/// value.
int programPath(std::string& path);

/// Stores the value of an environment variable. Returns false if there is none of that name.
bool environmentValue(char const* name, std::string& value);
/// Returns all environment variables as "name=value", in their own order.
std::vector<std::string> environmentEntries();

/// Returns the operating system's message for one of its error numbers, without a line end; the C
/// library's message for a number unknown to the operating system.
std::string errorText(int number);

/// Returns a count of milliseconds, 32 bits wide: it wraps to 0 after about 49.7 days.
std::uint32_t tickCount();
/// Sleeps ms milliseconds, even if signals arrive; 0 gives up the rest of the time slice.
void sleepMilliseconds(std::uint32_t ms);

/// Returns the number of the process.
int processId();

/// Returns the number of the calling thread, unique among the running threads of the process.
unsigned currentThreadId();
/// Names the calling thread for debuggers and system tools. A long name is truncated, an empty one
/// is ignored.
void nameThread(char const* name);

/// Whether the CPU is an ARMv8 with CRC-32 instructions, as the operating system reports.
bool hasArmCrcInstructions();

enum class Interruption { none, user, termination };

/// While alive, calls a function on Ctrl-C, Ctrl-Break or a termination request instead of ending
/// the process. A second one ends it at once. Only one handler may exist. Create it before other
/// threads, and destroy it on the thread that created it. Without memory or threads for it,
/// interruptions end the process as usual.
class InterruptHandler {
public:
    /// Calls act at most once, on a thread of its own.
    explicit InterruptHandler(void (*act)());
    InterruptHandler(InterruptHandler const&) = delete;
    InterruptHandler& operator=(InterruptHandler const&) = delete;
    /// Waits for act to return, if it was called. Later termination requests are ignored: the
    /// process is about to exit.
    ~InterruptHandler();

    /// The first interruption, if there was one.
    Interruption Received() const;
    /// Ends the process at once: by the signal of the interruption, or with the exit status where
    /// there are no signals. Returns if there was no interruption.
    void EndAtOnce(int exitStatus);
    /// Ends the process the way the interruption would have ended it without this handler. Returns
    /// if there was none.
    void EndIfInterrupted();

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace sys::platform
