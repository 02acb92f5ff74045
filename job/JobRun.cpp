#include "job/JobRun.h"

#include <algorithm>

#include "core/archive/StreamSequencerReader.h"
#include "core/net/Socket.h"
#include "core/runtime/Application.h"
#include "core/text/message.h"
#include "sys/platform/Process.h"
#include "update/protocol/names.h"

namespace job {

using core::fault;
using core::JsonValue;
using core::message;
using core::String;
using sys::platform::StandardStream;
using update::UpdateNotification;

namespace {

int const longestPause = 300;  ///< seconds
int const stagePeriod = 1'000;
int const drainTime = 5'000;    ///< ms for standard output to take all lines
int const lateDrainTime = 500;  ///< ms for the result, if it did not

char const* const stageNames[] = {"received", "checked", "processing"};

String addressText(core::IPv4Address const& address) {
    return message("%1:%2", address.GetAsString(false), address.Port());
}

char const* restartName(std::uint32_t restart) {
    switch (restart) {
        case UpdateNotification::FirmwareRestart:
            return "firmware";
        case UpdateNotification::HardwareRestart:
            return "hardware";
        case UpdateNotification::PowerCycle:
            return "powerCycle";
        default:
            return "other";
    }
}

char const* sourceOf(Error const& error) {
    return error.status ? "device" : "updater";
}

JsonValue statusName(Error const& error) {
    return error.status ? JsonValue(update::nameOfStatus(*error.status)) : JsonValue(nullptr);
}

char const* nameOf(Signal signal) {
    return signal == Signal::interrupt ? "INT" : "TERM";
}

JsonValue textOrNull(String const& text) {
    return text.GetLength() > 0 ? shortJson(text) : JsonValue(nullptr);
}

JsonValue described(Error const& error) {
    return JsonValue::Object({{"title", shortJson(error.fault.title)},
                              {"message", shortJson(error.fault.message)},
                              {"source", sourceOf(error)},
                              {"status", error.status},
                              {"statusName", statusName(error)}});
}

}  // namespace

JobRun::JobRun(JobOptions const& options)
    : options_(options),
      output_(StandardStream::output),
      errors_(StandardStream::error),
      deadline_(1000ULL * static_cast<unsigned>(options.maxTime)),
      events_(options.name, options.printsJson ? &output_ : nullptr),
      text_(options.printsJson ? errors_ : output_,
            options.printsJson ? StandardStream::error : StandardStream::output,
            options.isQuiet      ? TextReporter::Content::nothing
            : options.printsJson ? TextReporter::Content::progressOnTerminal
                                 : TextReporter::Content::everything) {}

int JobRun::RejectCommandLine(std::vector<Error> const& errors) {
    std::lock_guard const locked(lock_);
    ReportStart();
    for (Error const& error : errors) {
        ReportError(error);
    }
    return ReportResult(&errors.front(), Signal::none);
}

int JobRun::Run(update::SessionTimeouts const& timeouts) {
    address_.Parse(options_.address);
    waitingLimit_ = timeouts.completion;
    auto error = OpenLog();
    if (!error) {
        error = OpenFile();
    }
    if (!error) {
        error = Attempt(timeouts);
    }
    while (error) {
        auto const pause = PauseBeforeRetry(*error);
        if (!pause) {
            break;
        }
        ReportRetry(*error, *pause);
        Pause(*pause);
        error = Attempt(timeouts);
    }
    std::lock_guard const locked(lock_);
    if (error) {
        ReportError(*error);
    }
    return ReportResult(error ? &*error : nullptr, Signal::none);
}

std::optional<int> JobRun::Interrupt(Signal signal) {
    std::unique_lock locked(lock_);
    if (isOver_ || step_ == Step::done) {
        return {};
    }
    Error const error{
        "interrupted",
        fault("Interrupted", "The run was ended by %1", String("SIG").AppendNew(nameOf(signal))),
        step_};
    ReportError(error);
    int const exitStatus = ReportResult(&error, signal);
    // For good: the session must not send the trailer after this result.
    locked.release();
    return exitStatus;
}

int JobRun::Abort(char const* cause, core::Fault const& fault) {
    std::lock_guard const locked(lock_);
    Error const error{cause, fault, step_};
    ReportError(error);
    return ReportResult(&error, Signal::none);
}

std::optional<Error> JobRun::OpenLog() {
    std::lock_guard const locked(lock_);
    step_ = Step::file;
    std::optional<Error> error;
    if (options_.log.GetLength() > 0) {
        error = events_.OpenLog(options_.log, options_.origin);
    }
    bool const isStarted = ReportStart();
    return error || isStarted ? error : logUnwritable(options_.log);
}

std::optional<Error> JobRun::OpenFile() {
    // Reading takes long: an interruption must not wait for the lock meanwhile.
    if (auto const failure = file_.Open(options_.origin)) {
        return errorOf(*failure);
    }
    auto error = options_.checksArchive ? CheckArchive() : std::nullopt;
    std::lock_guard const locked(lock_);
    isMeasured_ = true;
    events_.Write("file",
                  {{"size", file_.Size()},
                   {"crc", core::hex(file_.Crc(), 8)},
                   {"modified", utcTime(file_.Modified())},
                   {"sound", options_.checksArchive ? JsonValue(!error) : JsonValue(nullptr)}});
    return error;
}

std::optional<Error> JobRun::CheckArchive() {
    file_.Stream().Seek(0);
    core::StreamSequencerReader reader;
    reader.SetStream(&file_.Stream());
    if (reader.Check() == core::StreamSequencerReader::valid) {
        return {};
    }
    return Error{"archiveUnsound",
                 fault("Archive invalid", "\"%1\" is not a valid update archive", options_.origin),
                 Step::file};
}

std::optional<Error> JobRun::Attempt(update::SessionTimeouts const& timeouts) {
    {
        std::lock_guard const locked(lock_);
        events_.SetAttempt(++attempts_);
        step_ = Step::connection;
        sent_ = 0;
    }
    update::StrictRules const rules{file_, options_.connectTimeout * 1000,
                                    options_.maxTime > 0 ? &deadline_ : nullptr};
    update::Task task{options_.origin, {}, &rules};
    if (auto error = address_.Resolve(task.device)) {
        return error;
    }
    update::Outcome const outcome = update::Session(task, *this, timeouts).Run();
    std::lock_guard const locked(lock_);
    sent_ = outcome.sent;
    return outcome.failure ? std::optional(errorOf(*outcome.failure)) : std::nullopt;
}

std::optional<int> JobRun::PauseBeforeRetry(Error const& error) const {
    if (!error.isTransient || IsTrailerBegun() || attempts_ > options_.retries) {
        return {};
    }
    int pause = options_.wait;
    for (int i = 1; i < attempts_ && pause < longestPause; ++i) {
        pause *= 2;
    }
    pause = std::min(pause, longestPause);
    bool const fits =
        options_.maxTime == 0 || 1000ULL * static_cast<unsigned>(pause) <
                                     deadline_.Remaining(0, core::CountDownTimer::unlimited);
    return fits ? std::optional(pause) : std::nullopt;
}

void JobRun::ReportRetry(Error const& error, int pause) {
    std::lock_guard const locked(lock_);
    ReportError(error);
    events_.Write("retry", {{"outcome", verdictOf(&error, false, 0, Signal::none).outcome},
                            {"cause", error.cause},
                            {"wait", pause},
                            {"left", options_.retries - attempts_}});
    text_.Print(message("- Trying again in %1 s (%2 of %3)", pause, attempts_, options_.retries));
}

void JobRun::Pause(int pause) {
    for (int left = pause; left > 0; --left) {
        {
            std::lock_guard const locked(lock_);
            text_.ShowPause(left, attempts_, options_.retries);
        }
        core::Application::Sleep(1000, false);
    }
}

void JobRun::OnConnecting(core::IPv4Address const& device) {
    std::lock_guard const locked(lock_);
    peer_ = device;
    events_.Write("connect", {{"peer", addressText(device)}, {"limit", options_.connectTimeout}});
    text_.OnConnecting(device);
}

void JobRun::OnConnected(core::IPv4Address const& local) {
    std::lock_guard const locked(lock_);
    step_ = Step::request;
    lastRecord_ = events_.Elapsed();
    events_.Write("connected", {{"peer", addressText(peer_)}, {"local", addressText(local)}});
    text_.OnConnected(local);
}

void JobRun::OnNotification(UpdateNotification const& notification) {
    std::lock_guard const locked(lock_);
    if (step_ == Step::request && notification.code == UpdateNotification::Accepted) {
        step_ = Step::header;
        events_.Write("accepted", {{"after", seconds(events_.Elapsed() - lastRecord_)}});
        text_.OnNotification(notification);
    } else if (update::isStage(notification.code)) {
        ReportStage(notification.code);
    } else if (notification.code == UpdateNotification::Complete) {
        restart_ = notification.value;
        text_.OnNotification(notification);
    }
    lastRecord_ = events_.Elapsed();
}

void JobRun::ReportStage(std::uint32_t code) {
    auto const index = code - UpdateNotification::Received;
    ++stageCounts_[index];
    long long const now = events_.Elapsed();
    if (code == lastStage_ && now - lastStageTime_ < stagePeriod) {
        return;
    }
    lastStage_ = code;
    lastStageTime_ = now;
    events_.Write("stage", {{"stage", stageNames[index]}, {"count", stageCounts_[index]}});
    UpdateNotification notification;
    notification.code = code;
    text_.OnNotification(notification);
    ShowWaiting();
}

void JobRun::ShowWaiting() {
    if (step_ == Step::waiting) {
        text_.ShowWaiting(events_.Elapsed() - waitingStart_, waitingLimit_);
    }
}

void JobRun::OnSending(int bytes, int fileSize, long long stalled) {
    std::lock_guard const locked(lock_);
    long long const now = events_.Elapsed();
    if (step_ != Step::transfer) {
        step_ = Step::transfer;
        transfer_.Start(now);
    }
    sent_ = bytes;
    transfer_.Add(now, bytes);
    long long const rate = transfer_.Rate();
    text_.ShowSending(bytes, fileSize, rate, stalled, now - transfer_.StartTime());
    if (transfer_.IsReportDue(now)) {
        JsonValue const left = rate > 0 ? JsonValue((fileSize - bytes) / rate) : JsonValue(nullptr);
        events_.WriteProgress({{"sent", bytes},
                               {"total", fileSize},
                               {"percent", program::percentOf(bytes, fileSize)},
                               {"rate", rate},
                               {"eta", left},
                               {"still", seconds(stalled)}});
    }
}

void JobRun::OnFileSent(int fileSize) {
    std::lock_guard const locked(lock_);
    sent_ = fileSize;
    long long const duration = events_.Elapsed() - transfer_.StartTime();
    events_.Write("sent", {{"sent", fileSize},
                           {"duration", seconds(duration)},
                           {"rate", program::rateOf(fileSize, duration)}});
    text_.OnFileSent(fileSize);
}

void JobRun::OnTrailer() {
    std::lock_guard const locked(lock_);
    step_ = Step::trailer;
    // On disk before the first byte leaves: the log must not lack what the device may have.
    events_.WriteThrough("trailer", {});
}

void JobRun::OnWaiting() {
    std::lock_guard const locked(lock_);
    step_ = Step::waiting;
    lastRecord_ = waitingStart_ = events_.Elapsed();
    text_.OnWaiting();
    ShowWaiting();
}

void JobRun::OnNotificationTimeout(core::Interval const& left) {
    std::lock_guard const locked(lock_);
    events_.Write("waiting", {{"silent", seconds(events_.Elapsed() - lastRecord_)},
                              {"left", left.GetMilliseconds() / 1000}});
    text_.OnNotificationTimeout(left);
    ShowWaiting();
}

void JobRun::OnComplete() {
    std::lock_guard const locked(lock_);
    step_ = Step::done;
    events_.Write("complete", {{"restart", restartName(restart_)}, {"value", restart_}});
    text_.OnComplete();
}

bool JobRun::ReportStart() {
    return events_.WriteStart({{"program", "ravelink-job"},
                               {"version", core::Application::Instance()->getVersionNumber()},
                               {"pid", sys::platform::processId()},
                               {"origin", textOrNull(options_.origin)},
                               {"address", textOrNull(options_.address)},
                               {"retry", options_.retries},
                               {"wait", options_.wait},
                               {"connectTimeout", options_.connectTimeout},
                               {"maxTime", options_.maxTime},
                               {"check", options_.checksArchive}});
}

void JobRun::ReportError(Error const& error) {
    events_.Write("error", {{"cause", error.cause},
                            {"title", shortJson(error.fault.title)},
                            {"message", shortJson(error.fault.message)},
                            {"step", nameOf(error.step)},
                            {"source", sourceOf(error)},
                            {"status", error.status},
                            {"statusName", statusName(error)}});
    text_.EndProgress();
    errors_.Write(core::faultLine(error.fault).AppendNew("\n"));
}

int JobRun::ReportResult(Error const* error, Signal signal) {
    Verdict const verdict = verdictOf(error, IsTrailerBegun(), restart_, signal);
    int const lost = events_.FinishOutput(drainTime);
    isOver_ = true;
    events_.WriteThrough(
        "result",
        {{"outcome", verdict.outcome},
         {"exit", verdict.exitStatus},
         {"signal", signal == Signal::none ? JsonValue(nullptr) : JsonValue(nameOf(signal))},
         {"cause", error != nullptr ? JsonValue(error->cause) : JsonValue(nullptr)},
         {"step", nameOf(error != nullptr ? error->step : Step::done)},
         {"trailer", IsTrailerBegun()},
         {"transient", verdict.isTransient},
         {"powerOff", verdict.powerOff},
         {"attempts", attempts_},
         {"sent", sent_},
         {"size", isMeasured_ ? JsonValue(file_.Size()) : JsonValue(nullptr)},
         {"crc", isMeasured_ ? JsonValue(core::hex(file_.Crc(), 8)) : JsonValue(nullptr)},
         {"restart", error == nullptr ? JsonValue(restartName(restart_)) : JsonValue(nullptr)},
         {"duration", seconds(events_.Elapsed())},
         {"dropped", lost},
         {"error", error != nullptr ? described(*error) : JsonValue(nullptr)},
         {"advice", verdict.advice}});
    text_.EndProgress();
    text_.Print(resultLine(verdict, error));
    output_.Drain(lost > 0 ? lateDrainTime : drainTime);
    errors_.Drain(drainTime);
    return verdict.exitStatus;
}

}  // namespace job
