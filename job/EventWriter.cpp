#include "job/EventWriter.h"

#include "core/text/message.h"

namespace job {

using core::JsonValue;
using core::String;

namespace {

int const schema = 1;
/// In bytes of JSON. A line has at most four texts whose length is the user's or the device's: it
/// stays below 4,096 bytes, which a pipe takes as a whole.
int const longestText = 600;
int const loggedProgressPeriod = 10'000;  ///< ms

}  // namespace

EventWriter::EventWriter(String const& device, LineWriter* output)
    : device_(device), output_(output) {}

std::optional<Error> EventWriter::OpenLog(String const& path, String const& origin) {
    return log_.Open(path, origin);
}

bool EventWriter::WriteStart(Members members) {
    String const line = Line("start", members);
    if (output_ != nullptr) {
        output_->Write(line);
    }
    if (!log_.IsOpen() || log_.Write(line)) {
        return true;
    }
    log_.Close();
    return false;
}

void EventWriter::Write(char const* event, Members members) {
    String const line = Line(event, members);
    if (output_ != nullptr) {
        output_->Write(line);
    }
    // Last: a failure is an event that follows this one.
    WriteToLog(line);
}

void EventWriter::WriteThrough(char const* event, Members members) {
    Write(event, members);
    if (log_.IsOpen() && !log_.Sync()) {
        ReportLogFailure();
    }
}

void EventWriter::WriteProgress(Members members) {
    String const line = Line("progress", members);
    if (output_ != nullptr && !output_->WriteProgress(line)) {
        ++skipped_;
    }
    if (Elapsed() - lastLoggedProgress_ >= loggedProgressPeriod) {
        lastLoggedProgress_ = Elapsed();
        WriteToLog(line);
    }
}

int EventWriter::FinishOutput(int ms) {
    if (output_ == nullptr) {
        return 0;
    }
    output_->Drain(ms);
    int const lost = output_->Dropped() + skipped_;
    if (lost > 0) {
        Warn("outputBehind", "Standard output did not accept all lines");
    }
    return lost;
}

String EventWriter::Line(char const* event, Members members) const {
    String const own = core::jsonMembers(members);
    return core::message("{%1%2%3}\n",
                         core::jsonMembers({
                             {"schema", schema},
                             {"event", event},
                             {"time", utcTime(core::Time::getStandardTime(true))},
                             {"elapsed", seconds(Elapsed())},
                             {"device", shortJson(device_)},
                             {"attempt", attempt_},
                         }),
                         own.GetLength() > 0 ? "," : "", own);
}

void EventWriter::WriteToLog(String const& line) {
    if (log_.IsOpen() && !log_.Write(line)) {
        ReportLogFailure();
    }
}

void EventWriter::ReportLogFailure() {
    if (!logHasFailed_) {
        logHasFailed_ = true;
        Warn("logFailed", "The log could not be written");
    }
}

void EventWriter::Warn(char const* cause, char const* text) {
    Write("warning", {{"cause", cause}, {"message", text}});
}

JsonValue shortJson(String const& text) {
    JsonValue whole(text);
    for (int length = longestText; whole.AsString().GetLength() > longestText; length -= 10) {
        whole = JsonValue(text.Left(length).AppendNew("..."));
    }
    return whole;
}

JsonValue seconds(long long milliseconds) {
    return JsonValue::Thousandths(milliseconds);
}

String utcTime(core::Time const& time) {
    return time.Format("yyyy-mm-ddTHH:MM:SS.zzzZ");
}

}  // namespace job
