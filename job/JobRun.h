#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <vector>

#include "core/runtime/CountDownTimer.h"
#include "core/text/String.h"
#include "job/Address.h"
#include "job/EventWriter.h"
#include "job/LineWriter.h"
#include "job/TextReporter.h"
#include "job/verdict.h"
#include "program/TransferMeter.h"
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
    /// Reports the end of the run by a signal and returns the exit status. The caller then ends the
    /// process: no other event is reported any more. Returns nothing if the update is complete or
    /// the result reported: Run then returns at once, with the exit status of its own.
    std::optional<int> Interrupt(Signal signal);
    /// Reports an error that ends the run, whatever its step. Returns the exit status.
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

    std::optional<Error> OpenLog();
    std::optional<Error> OpenFile();
    std::optional<Error> CheckArchive();
    std::optional<Error> Attempt(update::SessionTimeouts const& timeouts);
    /// Returns the seconds before the next attempt, or nothing if the run ends with the error.
    std::optional<int> PauseBeforeRetry(Error const& error) const;
    void ReportRetry(Error const& error, int pause);
    void Pause(int pause);

    // The caller holds lock_.
    bool ReportStart();
    void ReportStage(std::uint32_t code);
    void ShowWaiting();
    void ReportError(Error const& error);
    int ReportResult(Error const* error, Signal signal);

    /// Whether the device can have received the trailer. No attempt follows then.
    bool IsTrailerBegun() const { return step_ >= Step::trailer; }

    JobOptions const options_;
    update::UpdateFile file_;
    Address address_;
    LineWriter output_;
    LineWriter errors_;
    core::CountDownTimer const deadline_;
    int waitingLimit_ = 0;  ///< ms from the trailer to the end

    std::mutex lock_;  ///< of everything below, and of the order of all that is written
    EventWriter events_;
    TextReporter text_;
    bool isOver_ = false;  ///< whether the result is reported
    Step step_ = Step::commandLine;
    int attempts_ = 0;
    bool isMeasured_ = false;  ///< whether the size and CRC of the file are known
    core::IPv4Address peer_;
    int sent_ = 0;  ///< bytes of the file, in this attempt
    program::TransferMeter transfer_;
    std::uint32_t restart_ = 0;
    // Times are in milliseconds since the start.
    long long lastRecord_ = 0;  ///< when the device was last heard, or its turn began
    long long waitingStart_ = 0;
    long long lastStageTime_ = 0;
    std::uint32_t lastStage_ = 0;
    int stageCounts_[3] = {};
};

}  // namespace job
