#include "job/JobRun.h"

#include <algorithm>
#include <climits>

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
int const progressPeriod = 1'000;
int const loggedProgressPeriod = 10'000;
int const stagePeriod = 1'000;
int const rateWindow = 5'000;
int const drainTime = 5'000;

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

JsonValue textOrNull(String const& text) {
    return text.GetLength() > 0 ? shortJson(text) : JsonValue(nullptr);
}

}  // namespace

JobRun::JobRun(JobOptions const& options)
    : options_(options),
      output_(StandardStream::output),
      errors_(StandardStream::error),
      text_(options.printsJson ? errors_ : output_,
            options.printsJson ? StandardStream::error : StandardStream::output,
            options.isQuiet      ? TextReporter::Content::nothing
            : options.printsJson ? TextReporter::Content::progressOnTerminal
                                 : TextReporter::Content::everything),
      deadline_(1000ULL * static_cast<unsigned>(options.maxTime)) {
    json_.SetDevice(options_.name);
}

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
    auto error = OpenFiles();
    while (!error) {
        error = Attempt(timeouts);
        if (!error) {
            std::lock_guard const locked(lock_);
            return ReportResult(nullptr, Signal::none);
        }
        auto const pause = PauseBeforeRetry(*error);
        if (!pause) {
            break;
        }
        Retry(*error, *pause);
        error.reset();
    }
    std::lock_guard const locked(lock_);
    ReportError(*error);
    return ReportResult(&*error, Signal::none);
}

int JobRun::Interrupt(Signal signal) {
    // For good: the other thread must not report, nor begin the trailer, after the result.
    lock_.lock();
    Error const error{"interrupted",
                      fault("Interrupted", "The run was ended by %1",
                            signal == Signal::interrupt ? "SIGINT" : "SIGTERM"),
                      step_};
    ReportError(error);
    return ReportResult(&error, signal);
}

int JobRun::Abort(char const* cause, core::Fault const& fault) {
    std::lock_guard const locked(lock_);
    Error const error{cause, fault, step_};
    ReportError(error);
    return ReportResult(&error, Signal::none);
}

std::optional<Error> JobRun::OpenFiles() {
    std::lock_guard const locked(lock_);
    step_ = Step::file;
    auto error = options_.log.GetLength() > 0 ? log_.Open(options_.log) : std::nullopt;
    ReportStart();
    if (!error && logHasFailed_) {
        error = logUnwritable(options_.log);
    }
    if (error) {
        return error;
    }
    if (auto const failure = file_.Open(options_.origin)) {
        return errorOf(*failure);
    }
    hasFile_ = true;
    error = options_.checksArchive ? CheckArchive() : std::nullopt;
    Write(
        "file", core::JsonMember{"size", file_.Size()},
        core::JsonMember{"crc", core::hex(file_.Crc(), 8)},
        core::JsonMember{"modified", utcTime(file_.Modified())},
        core::JsonMember{"sound", options_.checksArchive ? JsonValue(!error) : JsonValue(nullptr)});
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
        json_.SetAttempt(++attempts_);
        step_ = Step::connection;
        isAccepted_ = false;
        sent_ = 0;
        attemptStart_ = json_.Elapsed();
    }
    update::StrictRules const rules{file_, options_.connectTimeout * 1000,
                                    options_.maxTime > 0 ? &deadline_ : nullptr};
    update::Task task{options_.origin, {}, &rules};
    if (auto const error = address_.Resolve(task.device)) {
        return error;
    }
    update::Outcome const outcome = update::Session(task, *this, timeouts).Run();
    return outcome.failure ? std::optional(errorOf(*outcome.failure)) : std::nullopt;
}

std::optional<int> JobRun::PauseBeforeRetry(Error const& error) const {
    if (!error.isTransient || isTrailerBegun_ || attempts_ > options_.retries) {
        return {};
    }
    long long pause = options_.wait;
    for (int i = 1; i < attempts_ && pause < longestPause; ++i) {
        pause *= 2;
    }
    pause = std::min<long long>(pause, longestPause);
    bool const fits =
        options_.maxTime == 0 || static_cast<unsigned long long>(pause) * 1000 <
                                     deadline_.Remaining(0, core::CountDownTimer::unlimited);
    return fits ? std::optional(static_cast<int>(pause)) : std::nullopt;
}

void JobRun::Retry(Error const& error, int pause) {
    {
        std::lock_guard const locked(lock_);
        ReportError(error);
        Write("retry",
              core::JsonMember{"outcome", verdictOf(&error, false, 0, Signal::none).outcome},
              core::JsonMember{"cause", error.cause}, core::JsonMember{"wait", pause},
              core::JsonMember{"left", options_.retries - attempts_});
        text_.Print(
            message("- Trying again in %1 s (%2 of %3)", pause, attempts_, options_.retries));
    }
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
    Write("connect", core::JsonMember{"peer", addressText(device)},
          core::JsonMember{"limit", options_.connectTimeout});
    text_.OnConnecting(device);
}

void JobRun::OnConnected(core::IPv4Address const& local) {
    std::lock_guard const locked(lock_);
    step_ = Step::request;
    lastRecord_ = json_.Elapsed();
    Write("connected", core::JsonMember{"peer", addressText(peer_)},
          core::JsonMember{"local", addressText(local)});
    text_.OnConnected(local);
}

void JobRun::OnNotification(UpdateNotification const& notification) {
    std::lock_guard const locked(lock_);
    if (notification.code == UpdateNotification::Accepted && !isAccepted_) {
        isAccepted_ = true;
        Write("accepted", core::JsonMember{"after", seconds(json_.Elapsed() - lastRecord_)});
        step_ = Step::header;
        text_.OnNotification(notification);
    } else if (update::isStage(notification.code)) {
        ReportStage(notification.code);
    } else if (notification.code == UpdateNotification::Complete) {
        restart_ = notification.value;
        text_.OnNotification(notification);
    }
    lastRecord_ = json_.Elapsed();
}

void JobRun::ReportStage(std::uint32_t code) {
    auto const index = code - UpdateNotification::Received;
    ++stageCounts_[index];
    long long const now = json_.Elapsed();
    if (code == lastStage_ && now - lastStageReport_ < stagePeriod) {
        return;
    }
    lastStage_ = code;
    lastStageReport_ = now;
    Write("stage", core::JsonMember{"stage", stageNames[index]},
          core::JsonMember{"count", stageCounts_[index]});
    UpdateNotification notification;
    notification.code = code;
    text_.OnNotification(notification);
}

void JobRun::OnSending(int bytes, int fileSize, long long stalled) {
    std::lock_guard const locked(lock_);
    long long const now = json_.Elapsed();
    if (step_ != Step::transfer) {
        step_ = Step::transfer;
        transferStart_ = lastProgress_ = now;
        lastLoggedProgress_ = now;
        samples_.clear();
    }
    sent_ = bytes;
    while (!samples_.empty() && now - samples_.front().time > rateWindow) {
        samples_.pop_front();
    }
    samples_.push_back({now, bytes});
    int const rate = SentRate();
    text_.ShowSending(bytes, fileSize, rate, stalled, now - transferStart_);
    if (now - lastProgress_ < progressPeriod) {
        return;
    }
    lastProgress_ = now;
    String const line = json_.Line(
        "progress", {{"sent", bytes},
                     {"total", fileSize},
                     {"percent", static_cast<int>(100LL * bytes / fileSize)},
                     {"rate", rate},
                     {"eta", rate > 0 ? JsonValue((fileSize - bytes) / rate) : JsonValue(nullptr)},
                     {"still", seconds(stalled)}});
    if (options_.printsJson) {
        output_.WriteIfIdle(line);
    }
    if (now - lastLoggedProgress_ >= loggedProgressPeriod) {
        lastLoggedProgress_ = now;
        WriteToLog(line, false);
    }
}

int JobRun::SentRate() const {
    Sample const& first = samples_.front();
    Sample const& last = samples_.back();
    long long const time = last.time - first.time;
    return time > 0 ? static_cast<int>(
                          std::min<long long>(1000LL * (last.sent - first.sent) / time, INT_MAX))
                    : 0;
}

void JobRun::OnFileSent(int fileSize) {
    std::lock_guard const locked(lock_);
    sent_ = fileSize;
    long long const now = json_.Elapsed();
    long long const duration = now - (step_ == Step::transfer ? transferStart_ : lastRecord_);
    step_ = Step::transfer;
    Write("sent", core::JsonMember{"sent", fileSize},
          core::JsonMember{"duration", seconds(duration)},
          core::JsonMember{"rate", 1000LL * fileSize / std::max(duration, 1LL)});
    text_.OnFileSent(fileSize);
}

void JobRun::OnTrailer() {
    std::lock_guard const locked(lock_);
    step_ = Step::trailer;
    isTrailerBegun_ = true;
    String const line = json_.Line("trailer", {});
    // On disk before the first byte leaves: the log must not lack what the device may have.
    WriteToLog(line, true);
    WriteToOutput(line);
}

void JobRun::OnWaiting() {
    std::lock_guard const locked(lock_);
    step_ = Step::waiting;
    lastRecord_ = json_.Elapsed();
    text_.OnWaiting();
}

void JobRun::OnNotificationTimeout(core::Interval const& left) {
    std::lock_guard const locked(lock_);
    Write("waiting", core::JsonMember{"silent", seconds(json_.Elapsed() - lastRecord_)},
          core::JsonMember{"left", left.GetMilliseconds() / 1000});
    text_.OnNotificationTimeout(left);
}

void JobRun::OnComplete() {
    std::lock_guard const locked(lock_);
    step_ = Step::done;
    Write("complete", core::JsonMember{"restart", restartName(restart_)},
          core::JsonMember{"value", restart_});
    text_.OnComplete();
}

void JobRun::ReportStart() {
    Write("start", core::JsonMember{"program", "ravelink-job"},
          core::JsonMember{"version", core::Application::Instance()->getVersionNumber()},
          core::JsonMember{"pid", sys::platform::processId()},
          core::JsonMember{"origin", textOrNull(options_.origin)},
          core::JsonMember{"address", textOrNull(options_.address)},
          core::JsonMember{"retry", options_.retries}, core::JsonMember{"wait", options_.wait},
          core::JsonMember{"connectTimeout", options_.connectTimeout},
          core::JsonMember{"maxTime", options_.maxTime},
          core::JsonMember{"check", options_.checksArchive});
}

void JobRun::ReportError(Error const& error) {
    Write("error", core::JsonMember{"cause", error.cause},
          core::JsonMember{"title", shortJson(error.fault.title)},
          core::JsonMember{"message", shortJson(error.fault.message)},
          core::JsonMember{"step", nameOf(error.step)}, core::JsonMember{"source", sourceOf(error)},
          core::JsonMember{"status", error.status},
          core::JsonMember{"statusName", statusName(error)});
    text_.EndProgress();
    errors_.Write(core::faultLine(error.fault).AppendNew("\n"));
}

int JobRun::ReportResult(Error const* error, Signal signal) {
    Verdict const verdict = verdictOf(error, isTrailerBegun_, restart_, signal);
    Step const step = error != nullptr ? error->step : Step::done;
    output_.Drain(drainTime);
    int const dropped = output_.Dropped();
    if (dropped > 0 && !outputHasFailed_) {
        outputHasFailed_ = true;
        Warn("outputBehind", "Standard output did not accept all lines");
    }
    JsonValue const signalName = signal == Signal::none        ? JsonValue(nullptr)
                                 : signal == Signal::interrupt ? JsonValue("INT")
                                                               : JsonValue("TERM");
    JsonValue const described =
        error != nullptr ? JsonValue::Object({{"title", shortJson(error->fault.title)},
                                              {"message", shortJson(error->fault.message)},
                                              {"source", sourceOf(*error)},
                                              {"status", error->status},
                                              {"statusName", statusName(*error)}})
                         : JsonValue(nullptr);
    String const line = json_.Line(
        "result",
        {{"outcome", verdict.outcome},
         {"exit", verdict.exitStatus},
         {"signal", signalName},
         {"cause", error != nullptr ? JsonValue(error->cause) : JsonValue(nullptr)},
         {"step", nameOf(step)},
         {"trailer", isTrailerBegun_},
         {"transient", error != nullptr && error->isTransient && !isTrailerBegun_},
         {"powerOff", verdict.powerOff},
         {"attempts", attempts_},
         {"sent", sent_},
         {"size", hasFile_ ? JsonValue(file_.Size()) : JsonValue(nullptr)},
         {"crc", hasFile_ ? JsonValue(core::hex(file_.Crc(), 8)) : JsonValue(nullptr)},
         {"restart", error == nullptr ? JsonValue(restartName(restart_)) : JsonValue(nullptr)},
         {"duration", seconds(json_.Elapsed())},
         {"dropped", dropped},
         {"error", described},
         {"advice", verdict.advice}});
    WriteToLog(line, true);
    WriteToOutput(line);
    text_.Print(message(
        error != nullptr ? "Result: %1 (exit %2) at the step %3; %4" : "Result: %1 (exit %2)%5; %4",
        verdict.outcome, verdict.exitStatus, nameOf(step), verdict.advice, ""));
    output_.Drain(dropped > 0 ? 0 : drainTime);
    errors_.Drain(drainTime);
    return verdict.exitStatus;
}

template <class... Members>
void JobRun::Write(char const* event, Members... members) {
    String const line = json_.Line(event, {members...});
    WriteToLog(line, false);
    WriteToOutput(line);
}

void JobRun::WriteToOutput(String const& line) {
    if (options_.printsJson) {
        output_.Write(line);
    }
}

void JobRun::WriteToLog(String const& line, bool isOnDisk) {
    if (!log_.IsOpen()) {
        return;
    }
    bool const isWritten = log_.Write(line) && (!isOnDisk || log_.Sync());
    if (!isWritten && !logHasFailed_) {
        logHasFailed_ = true;
        Warn("logFailed", "The log could not be written");
    }
}

void JobRun::Warn(char const* cause, char const* text) {
    String const line = json_.Line("warning", {{"cause", cause}, {"message", text}});
    WriteToLog(line, false);
    WriteToOutput(line);
}

}  // namespace job
