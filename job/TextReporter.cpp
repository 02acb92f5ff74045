#include "job/TextReporter.h"

#include "core/text/message.h"
#include "program/TransferMeter.h"

namespace job {

using core::message;
using core::String;
using program::minutesAndSeconds;

namespace {

int const longStall = 5'000;    ///< ms
int const linePeriod = 10'000;  ///< ms between two lines of progress

}  // namespace

TextReporter::TextReporter(LineWriter& writer, sys::platform::StandardStream stream,
                           Content content)
    : writer_(writer), content_(content), line_(stream) {}

void TextReporter::OnConnecting(core::IPv4Address const& device) {
    tenths_ = 0;
    nextLine_ = 0;
    LineReporter::OnConnecting(device);
}

void TextReporter::ShowSending(int bytes, int fileSize, long long rate, long long stalled,
                               long long elapsed) {
    if (!line_.IsShown()) {
        int const percent = program::percentOf(bytes, fileSize);
        if (content_ == Content::everything && percent / 10 > tenths_ && elapsed >= nextLine_) {
            tenths_ = percent / 10;
            nextLine_ = elapsed + linePeriod;
            Print(message("  Sending %1%", percent));
        }
        return;
    }
    if (stalled >= longStall) {
        Draw(message("  Sending ... stalled for %1 s", stalled / 1000));
        return;
    }
    Draw(line_.TransferText("Sending", bytes, fileSize, rate));
}

void TextReporter::ShowWaiting(long long elapsed, long long limit) {
    Draw(message("  Waiting for the device  %1 of at most %2", minutesAndSeconds(elapsed / 1000),
                 minutesAndSeconds(limit / 1000)));
}

void TextReporter::ShowPause(int seconds, int number, int count) {
    Draw(message("  Trying again in %1 s (%2 of %3)", seconds, number, count));
}

void TextReporter::EndProgress() {
    if (String const text = line_.Erase(); !text.IsEmpty()) {
        writer_.Write(text);
    }
}

void TextReporter::Print(String const& line) {
    if (content_ == Content::everything) {
        EndProgress();
        writer_.Write(line.AppendNew("\n"));
    }
}

void TextReporter::Draw(String const& text) {
    if (line_.IsShown() && content_ != Content::nothing) {
        writer_.WriteProgress(line_.Redraw(text));
    }
}

}  // namespace job
