#pragma once

#include <atomic>

#include "core/object/BasicClass.h"
#include "core/object/ClassRef.h"
#include "core/runtime/AppStatus.h"
#include "core/runtime/Event.h"
#include "core/runtime/ExecutionBit.h"
#include "core/runtime/ExecutionLink.h"
#include "core/runtime/ExecutionQueueAbstract.h"
#include "core/runtime/version.h"
#include "core/text/String.h"
#include "core/text/StringArray.h"

namespace core {

/// The one application object of a process: its name and version, its command line, its life from
/// the first initialisation to the termination that somebody requests. A program derives its own
/// class, constructs it once in main, has it parse the command line and calls Run.
/// Everything runs on the main thread, but for RequestTermination and WakeLoop, which any thread
/// may call.
class Application : public BasicClass {
public:
    enum TerminationRequest {
        noRequest = 0,
        normalRequest = 1,
        delayedRequest = 2,  ///< a daemon keeps its process-ID record for 10 more seconds
    };

    /// A second application in one process ends the process at once with exit code 1.
    /// Changes the whole process: it ignores SIGPIPE and SIGXFSZ from now on, and opens those of
    /// the descriptors 0 to 2 that are closed on an empty source or sink, so that no file or socket
    /// gets their numbers. Writes the status file and initialises the checksums.
    explicit Application(String const& name);
    Application(Application const&) = delete;
    Application& operator=(Application const&) = delete;
    ~Application() override;

    char const* ClassName() const override;
    /// Not counted: main owns the application. Both return 0.
    int _addRef() override;
    int _release() override;

    /// The application; null before it is constructed. It is not cleared by the destructor.
    static Application* Instance();
    /// The name, or "GApplication == nil" without an application.
    static String AppName();
    /// The number of the thread that constructed the application or called Run; 0 without one.
    static unsigned MainThreadID();
    /// Of the daemon that the process has become; 0 otherwise.
    static unsigned ProcessID();
    static unsigned SessionID();
    static bool IsADaemon();
    static bool IsUsingSysLog();
    /// Always false: no platform of ours makes daemons of its programs.
    bool Daemonize(String const& name);
    /// A number of the program's own for its phase; the frame sets it too, as Run goes on.
    void setApplicationStatus(int status) { applicationStatus_ = status; }
    int getApplicationStatus() const { return applicationStatus_; }

    // The version record.
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

    /// Parses the arguments behind the first into the list of options. The grammar holds an entry
    /// for each option, separated by ">": short name, "|", long name, "=", the exact number of
    /// values; "h|help=0>o|origin=1". Options are given as -o, --origin, with values behind them or
    /// behind a "="; a word that belongs to no option is dropped. What is wrong is added to errors
    /// as pairs of title and detail, and parsing goes on; always true.
    bool CommandLinePrepare(int argc, char const* const* argv, String const& grammar,
                            StringArray& errors);
    /// Whether an option was given. A query is a short name, a long name, or both with "|".
    bool FindOption(String const& query) const;
    /// The same, and its values joined by "|".
    bool GetOptionValues(String const& query, String& values) const;
    /// Its place in the list of options, or -1.
    int FindOptionIndex(String const& query) const;
    int CountOptions() const;
    /// The parts of one option; false when there is none at index.
    bool GetOption(int index, String& shortName, String& longName, String& values) const;

    /// Splits at the first "|"; without one all is short name.
    static void SplitOption(String const& option, String& shortName, String& longName);
    /// Whether two options share their short or their long name, ignoring case. Two empty names
    /// are the same, so every entry of a grammar carries both.
    static bool SameOption(String const& one, String const& other);
    /// The option as a user types it: "--long", else "-short".
    static String Requote(String const& option);
    /// Checks an option against the grammar and stores it in the application's list, which is
    /// created if CommandLinePrepare has not done so: its place in the list, or -1 with an error
    /// added. A repeated option gathers its values. Without an application the checks are the same
    /// and the result is -1.
    static int AddToArguments(String const& key, String const& values, StringArray const& grammar,
                              StringArray& errors);

    /// Initialises, loops until termination is requested, and returns when all is done.
    void Run();
    /// What main returns to the system.
    virtual int Result();

    /// Stores the first request that is not 0 and wakes everybody who waits for it; it cannot be
    /// replaced or withdrawn.
    static void RequestTermination(TerminationRequest request);
    static TerminationRequest TerminationRequested();
    static bool IsTerminationRequested();
    /// Takes a daemon's process-ID record back, once; returns the process flags from before.
    unsigned FulfillTerminationRequest();
    static bool IsTerminated();
    /// Sleeps ms milliseconds: 1 when termination is requested by then, else 0. An interruptible
    /// sleep ends at the request.
    static int Sleep(int ms, bool interruptible);
    /// Makes the main loop go through a pass now.
    static void WakeLoop();
    /// Queues a bit, to be run on the main thread by the main loop; returns its link. From any
    /// thread.
    ClassRef<ExecutionLink> Dispatch(ClassRef<ExecutionBit> const& bit,
                                     ExecutionQueueAbstract::ExecutionPriority priority);

protected:
    /// Called once, before the first Init; the result is not looked at.
    virtual bool InitOnce();
    /// Called every 10 ms until it returns true or termination is requested.
    virtual bool Init();
    /// Called by the main loop about as often as their names say; at most one a pass.
    virtual void Idle1s();
    virtual void Idle5s();
    virtual void Idle10s();
    virtual void Idle30s();
    virtual void Idle60s();
    /// Called at the end of the main loop, but not when Init was never finished.
    virtual void Done();

private:
    /// Runs its items itself, on the thread that takes them.
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

    int applicationStatus_ = 0;

    Event terminationEvent_;
    std::atomic<TerminationRequest> terminationRequest_ = noRequest;
    unsigned flags_ = 0;
    unsigned processId_ = 0;
    unsigned sessionId_ = 0;
    unsigned mainThreadId_;
    String name_;
    AppStatus status_;
    ClassRef<StringArray> options_;  ///< empty until CommandLinePrepare
    MainExecutionQueue mainQueue_;
    Event wakeEvent_;
};

}  // namespace core
