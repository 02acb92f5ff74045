#pragma once

#include <exception>
#include <vector>

#include "core/runtime/Application.h"
#include "core/text/message.h"
#include "sys/platform/Process.h"

namespace program {

/// The exit statuses of the programs that report their result by it.
enum class ExitStatus { done = 0, failed = 1, wrongUsage = 2 };

/// The effect of Ctrl-C, or of a request of the operating system to end, while a program runs. A
/// second interruption always ends the process at once.
enum class Interruption {
    endProcess,              ///< at once
    terminate,               ///< requests termination, so that the program ends by itself
    terminateAndEndProcess,  ///< the same; then ends the process as the first would have done
};

/// The fixed properties of a program.
struct Identity {
    char const* name;           ///< as users type it
    char const* description;    ///< the end of the banner, and a line feed
    char const* optionGrammar;  ///< see core::Application::CommandLinePrepare; has "h|help=0", and
                                ///< a long option "version" to offer that
    void (*showUsage)();        ///< prints the usage screen
    Interruption interruption = Interruption::endProcess;
};

/// A program with a banner, a command line and an exit status. The derived class does its work in
/// Init.
class Program : public core::Application {
public:
    explicit Program(Identity const& identity);

    /// Prints the banner. Then shows the errors of the command line, or the usage screen with -h,
    /// or nothing else with --version, or else calls Run.
    void Main(int argc, char const* const* argv);

    /// Returns the exit status.
    int Result() override { return static_cast<int>(status_); }

protected:
    /// Returns the grammar for this command line, by default that of the identity.
    virtual core::String OptionGrammar(int argc, char const* const* argv) const;
    /// Adds the errors of options that the grammar accepts. Called before the banner, unless the
    /// grammar rejects the command line or -h or --version is given.
    virtual void CheckOptions(std::vector<core::Fault>& errors);
    /// Whether to print the banner; called after CheckOptions.
    virtual bool HasBanner() const { return true; }
    /// Prints the errors of the command line, an empty line and the usage screen.
    virtual void ShowUsageErrors(std::vector<core::Fault> const& errors);

    /// Sets the exit status, unless it is already a higher one.
    void RaiseStatus(ExitStatus status);
    /// Prints the errors, raises the exit status and requests termination. Returns false.
    bool Quit(std::vector<core::Fault> const& errors, ExitStatus status);

private:
    Identity const identity_;
    ExitStatus status_ = ExitStatus::done;
};

/// Prints a line for each error; of more than 20 only the first 20 and a line that counts the rest.
void printErrors(std::vector<core::Fault> const& errors);

/// Returns the error of an exception: memory or threads are exhausted, most likely.
[[nodiscard]] core::Fault errorFromException(std::exception const& exception);

/// Runs a program as main does: constructs it, calls its Main with the arguments of the process and
/// returns its Result. Prints the error of an exception and then returns ExitStatus::failed.
template <class Derived>
int run(int argc, char** argv) {
    try {
        Derived program;
        sys::platform::Arguments const arguments(argc, argv);
        program.Main(arguments.Count(), arguments.Values());
        return program.Result();
    } catch (std::exception const& exception) {
        printErrors({errorFromException(exception)});
        return static_cast<int>(ExitStatus::failed);
    }
}

}  // namespace program
