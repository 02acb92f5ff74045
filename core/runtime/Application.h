#pragma once

#include <atomic>

#include "core/object/BasicClass.h"
#include "core/object/ClassRef.h"
#include "core/runtime/AppStatus.h"
#include "core/runtime/Event.h"
#include "core/runtime/ExecutionBit.h"
#include "core/runtime/ExecutionQueueAbstract.h"
#include "core/runtime/version.h"
#include "core/text/String.h"
#include "core/text/StringArray.h"

namespace core {

/// The application object of a process: name, version, command-line options, main loop and
/// termination request. A program derives its own class, constructs it once in main, calls
/// CommandLinePrepare and then Run.
/// Other threads may only call RequestTermination, TerminationRequested, IsTerminationRequested,
/// Sleep, WakeLoop and Dispatch.
class Application : public BasicClass {
public:
    enum TerminationRequest {
        noRequest = 0,
        normalRequest = 1,
        delayedRequest = 2,  ///< a daemon keeps its process-ID record for 10 more seconds
    };

    /// Prepares the process (see sys::platform::prepareProcess), initialises the CRC tables, arms
    /// the wake-up timer and writes the status file. A second application ends the process at once
    /// with exit code 1.
    explicit Application(String const& name);
    Application(Application const&) = delete;
    Application& operator=(Application const&) = delete;
    ~Application() override;

    char const* ClassName() const override;
    /// Do nothing and return 0: the application is not reference-counted.
    int _addRef() override;
    int _release() override;

    /// Returns the application; null before its construction. The destructor does not reset it.
    static Application* Instance();
    /// Returns the name; "GApplication == nil" without an application.
    static String AppName();
    /// Returns the ID of the thread that called Run or, before Run, the constructor; 0 without an
    /// application.
    static unsigned MainThreadID();
    /// Return the IDs recorded by Daemonize; 0 if the process is not a daemon.
    static unsigned ProcessID();
    static unsigned SessionID();
    static bool IsADaemon();
    static bool IsUsingSysLog();
    /// Returns false: daemons are not supported.
    bool Daemonize(String const& name);
    /// Stores a program-defined status; Run also sets the status, from 1 to 5.
    void setApplicationStatus(int status) { applicationStatus_ = status; }

    // The version texts; see version::Record.

    void setVersionNumber(unsigned major, unsigned minor);
    void setVersionNumber(String const& text);
    void setVersionModelName(String const& name);
    void setDevStage(version::CEDevStage stage);
    void setDescription(String const& description);
    void setBuildVersion(String const& build);
    void clearBuildVersion();
    String getVersionNumber() const;
    String getVersionBuild() const;
    String getVersionShort() const;
    String getVersionLong(bool withDescription) const;
    String getDescription() const;
    String getBuildVersion() const;

    /// Parses argv[1] onwards into the list of options and returns true. The grammar has an entry
    /// for each option, separated by ">": short name, "|", long name, "=", exact number of values;
    /// for example "h|help=0>o|origin=1". An option is "-o" or "--origin", ignoring case; its
    /// values are the arguments that follow, the first optionally joined by "=". Arguments before
    /// the first option are dropped. Adds errors as pairs of title and detail and continues.
    bool CommandLinePrepare(int argc, char const* const* argv, String const& grammar,
                            StringArray& errors);
    /// Whether an option was given. A query is a short name, a long name, or both joined by "|".
    bool FindOption(String const& query) const;
    /// Whether an option was given; if so, sets values to its values, joined by "|".
    bool GetOptionValues(String const& query, String& values) const;
    /// Returns the index of an option in the list, or -1.
    int FindOptionIndex(String const& query) const;
    int CountOptions() const;
    /// Gets the parts of the option at index; returns false if index is out of range.
    bool GetOption(int index, String& shortName, String& longName, String& values) const;

    /// Splits an option at the first "|"; without "|" it is all short name.
    static void SplitOption(String const& option, String& shortName, String& longName);
    /// Whether the short or the long names of two options are equal, ignoring case. Two empty
    /// names are equal, so every entry of a grammar needs both names.
    static bool SameOption(String const& one, String const& other);
    /// Returns the option as typed by users: "--long", or "-short" without a long name.
    static String Requote(String const& option);
    /// Checks an option against the grammar, stores it in the application's list and returns its
    /// index; on an error, adds the error and returns -1. The values of a repeated option are
    /// appended to the stored ones. Without an application, only checks, and returns -1.
    static int AddToArguments(String const& key, String const& values, StringArray const& grammar,
                              StringArray& errors);

    /// Calls InitOnce and Init, runs the main loop until termination is requested, and calls Done.
    /// Writes the phases to the status file.
    void Run();
    /// Returns the exit status of the process; 0 by default.
    virtual int Result();

    /// Stores the first nonzero request, which is final, and wakes all waiters.
    static void RequestTermination(TerminationRequest request);
    static TerminationRequest TerminationRequested();
    static bool IsTerminationRequested();
    /// Removes a daemon's process-ID record, once. Returns the process flags as they were.
    unsigned FulfillTerminationRequest();
    static bool IsTerminated();
    /// Sleeps ms milliseconds; an interruptible sleep ends at a termination request. Returns 1 if
    /// termination is requested, else 0.
    static int Sleep(int ms, bool interruptible);
    /// Starts the next pass of the main loop now.
    static void WakeLoop();
    /// Queues a bit, which the main loop runs on the main thread. Returns its link; see
    /// ExecutionQueueAbstract::Dispatch.
    ClassRef<ExecutionLink> Dispatch(ClassRef<ExecutionBit> const& bit,
                                     ExecutionQueueAbstract::ExecutionPriority priority);

protected:
    /// Called once, before the first Init; the result is ignored.
    virtual bool InitOnce();
    /// Called every 10 ms until it returns true or termination is requested.
    virtual bool Init();
    /// Called by the main loop about every 1 to 60 s; at most one of them in each pass.
    virtual void Idle1s();
    virtual void Idle5s();
    virtual void Idle10s();
    virtual void Idle30s();
    virtual void Idle60s();
    /// Called after the main loop, but not if termination was requested before Init returned true.
    virtual void Done();

    int applicationStatus_ = 0;  ///< see setApplicationStatus

private:
    /// Runs its items on the thread that schedules them.
    class MainExecutionQueue : public ExecutionQueueAbstract {
    public:
        char const* ClassName() const override;
        void ScheduleItem(ClassRef<ExecutionLink> const& item, unsigned long long now) override;

    protected:
        void Dispatched() override;
    };

    enum ProcessFlag : unsigned {
        daemonFlag = 1U << 0,
        sysLogFlag = 1U << 1,
        fulfilledFlag = 1U << 31,
    };

    bool HasFlag(ProcessFlag flag) const { return (flags_ & flag) != 0; }
    StringArray& Options();
    bool Initialise();
    void Loop();
    unsigned long long RunNextBit(unsigned long long now);

    Event terminationEvent_;
    std::atomic<TerminationRequest> terminationRequest_ = noRequest;
    unsigned flags_ = 0;
    unsigned processId_ = 0;
    unsigned sessionId_ = 0;
    unsigned mainThreadId_;
    String name_;
    AppStatus status_;
    ClassRef<StringArray> options_;  ///< empty before CommandLinePrepare
    MainExecutionQueue mainQueue_;
    Event wakeEvent_;
};

/// Arms the wake-up timer, which calls TimerFunc every 250 ms on a thread of its own while the main
/// loop runs. Returns false if it is already armed.
bool timerInit();
/// Disarms the wake-up timer and waits until its thread has ended.
void timerDone();
/// Wakes the main loop.
void TimerFunc();

}  // namespace core
