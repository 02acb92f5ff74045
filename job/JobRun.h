#pragma once

#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>

#include "core/runtime/CountDownTimer.h"
#include "core/text/String.h"
#include "job/Address.h"
#include "job/JsonLines.h"
#include "job/LineWriter.h"
#include "job/LogFile.h"
#include "job/TextReporter.h"
#include "job/verdict.h"
#include "update/session/Session.h"
#include "update/session/UpdateFile.h"

namespace job {

/// The options of a run, checked.
struct JobOptions {
    core::String origin;
    core::String address;
    core::String name;  ///< of the device, in all lines
    core::String log;   ///< empty: none
    int retries = 0;
    int wait = 10;            ///< seconds
    int connectTimeout = 10;  ///< seconds
    int maxTime = 0;          ///< seconds; 0: unlimited
    bool checksArchive = false;
    bool printsJson = false;
    bool isQuiet = false;
};

/// One run of ravelink-job: the attempts to update a device and everything that is reported about
/// them. Its events arrive on the thread of Run; an interruption on a thread of its own.
class JobRun : private update::SessionObserver {
public:
    explicit JobRun(JobOptions const& options);
    JobRun(JobRun const&) = delete;
    JobRun& operator=(JobRun const&) = delete;

    /// Prints the banner, unless the run prints only JSON lines or errors.
    void PrintBanner(core::String const& banner) { text_.Print(banner); }
    /// Reports the errors of the command line instead of a run. Returns the exit status.
    int RejectCommandLine(std::vector<Error> const& errors);
    /// Runs all attempts and returns the exit status.
    int Run(update::SessionTimeouts const& timeouts);
    /// Reports the end of the run by a signal and returns the exit status. The caller ends the
    /// process: no other event is reported any more.
    int Interrupt(Signal signal);
    /// Reports an error that ends the run wherever it is. Returns the exit status.
    int Abort(char const* cause, core::Fault const& fault);

private:
    void OnConnecting(core::IPv4Address const& device) override;
    void OnConnected(core::IPv4Address const& local) override;
    void OnNotification(update::UpdateNotification const& notification) override;
    void OnSending(int bytes, int fileSize, long long stalled) override;
    void OnFileSent(int fileSize) override;
    void OnTrailer() override;
    void OnWaiting() override;
    void OnNotificationTimeout(core::Interval const& left) override;
    void OnComplete() override;

    void ReportStart();
    std::optional<Error> OpenFiles();
    std::optional<Error> CheckArchive();
    std::optional<Error> Attempt(update::SessionTimeouts const& timeouts);
    void ReportStage(std::uint32_t code);
    void ReportError(Error const& error);
    int ReportResult(Error const* error, Signal signal);
    /// Returns the seconds before attempt number attempt_ + 1, or nothing if there is none.
    std::optional<int> PauseBeforeRetry(Error const& error) const;
    void Retry(Error const& error, int pause);

    /// Writes an event to the log and, with -j, to standard output.
    template <class... Members>
    void Write(char const* event, Members... members);
    void WriteToLog(core::String const& line, bool isOnDisk);
    void WriteToOutput(core::String const& line);
    void Warn(char const* cause, char const* message);

    int SentRate() const;

    JobOptions options_;
    update::UpdateFile file_;
    Address address_;
    LogFile log_;
    JsonLines json_;
    LineWriter output_;
    LineWriter errors_;
    TextReporter text_;
    core::CountDownTimer deadline_;

    std::mutex lock_;  ///< of everything below, and of everything that is written
    Step step_ = Step::commandLine;
    int attempts_ = 0;
    core::IPv4Address peer_;
    bool hasFile_ = false;
    bool isAccepted_ = false;
    bool isTrailerBegun_ = false;
    int sent_ = 0;  ///< bytes of the file, in this attempt
    std::uint32_t restart_ = 0;
    bool logHasFailed_ = false;
    bool outputHasFailed_ = false;
    long long attemptStart_ = 0;  ///< ms since the start, as the next ones
    long long transferStart_ = 0;
    long long lastRecord_ = 0;
    long long lastProgress_ = 0;
    long long lastLoggedProgress_ = 0;
    long long lastStageReport_ = 0;
    std::uint32_t lastStage_ = 0;
    int stageCounts_[3] = {};
    struct Sample {
        long long time;
        int sent;
    };
    std::deque<Sample> samples_;  ///< of the last seconds of the transfer
};

}  // namespace job
