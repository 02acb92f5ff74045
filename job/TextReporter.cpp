#include "job/TextReporter.h"

#include <algorithm>

#include "core/text/message.h"

namespace job {

using core::message;
using core::String;

namespace {

int const barCells = 16;
int const columnsForBar = 60;
int const longStall = 5'000;    ///< ms
int const linePeriod = 10'000;  ///< ms between two lines of progress

/// Returns bytes in MiB, with one decimal.
String mebibytes(long long bytes) {
    long long const tenths = bytes * 10 / (1024LL * 1024);
    return message("%1.%2", tenths / 10, tenths % 10);
}

/// Returns a time as "M:SS".
String minutes(long long milliseconds) {
    long long const seconds = milliseconds / 1000;
    return message(seconds % 60 < 10 ? "%1:0%2" : "%1:%2", seconds / 60, seconds % 60);
}

}  // namespace

TextReporter::TextReporter(LineWriter& writer, sys::platform::StandardStream stream,
                           Content content)
    : writer_(writer),
      content_(content),
      isTerminal_(sys::platform::redrawsLines(stream)),
      width_(isTerminal_ ? sys::platform::terminalWidth(stream) : 0) {}

void TextReporter::OnConnecting(core::IPv4Address const& device) {
    tenths_ = 0;
    nextLine_ = 0;
    LineReporter::OnConnecting(device);
}

void TextReporter::ShowSending(int bytes, int fileSize, int rate, long long stalled,
                               long long elapsed) {
    int const percent = static_cast<int>(100LL * bytes / fileSize);
    if (!isTerminal_) {
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
    String text = message("  Sending %1%2%  %3 of %4 MiB  %5 MiB/s", BarOf(percent), percent,
                          mebibytes(bytes), mebibytes(fileSize), mebibytes(rate));
    if (rate > 0) {
        text.Append(message("  %1 left", minutes(1000LL * (fileSize - bytes) / rate)));
    }
    Draw(text);
}

void TextReporter::ShowWaiting(long long elapsed, long long limit) {
    Draw(message("  Waiting for the device  %1 of at most %2", minutes(elapsed), minutes(limit)));
}

void TextReporter::ShowPause(int seconds, int number, int count) {
    Draw(message("  Trying again in %1 s (%2 of %3)", seconds, number, count));
}

void TextReporter::EndProgress() {
    if (drawn_ > 0) {
        writer_.Write(message("\r%1\r", String::OfChar(' ', drawn_)));
        drawn_ = 0;
    }
}

void TextReporter::Print(String const& line) {
    if (content_ == Content::everything) {
        EndProgress();
        writer_.Write(line.AppendNew("\n"));
    }
}

void TextReporter::Draw(String const& text) {
    if (!isTerminal_ || content_ == Content::nothing) {
        return;
    }
    // The last column stays empty: some terminals begin a new line after it.
    String const line = text.Left(std::max(width_ - 1, 0));
    int const covered = std::max(drawn_ - line.GetLength(), 0);
    writer_.WriteProgress(message("\r%1%2", line, String::OfChar(' ', covered)));
    drawn_ = line.GetLength() + covered;
}

String TextReporter::BarOf(int percent) const {
    if (width_ < columnsForBar) {
        return "";
    }
    int const full = barCells * percent / 100;
    return message("[%1%2]  ", String::OfChar('#', full), String::OfChar('.', barCells - full));
}

}  // namespace job
