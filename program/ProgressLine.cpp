#include "program/ProgressLine.h"

#include <algorithm>

#include "core/text/message.h"
#include "program/TransferMeter.h"

namespace program {

using core::message;
using core::String;

namespace {

int const barCells = 16;
int const columnsForBar = 60;

/// Returns bytes in MiB, with one decimal.
String mebibytes(long long bytes) {
    long long const mebibyte = 1024LL * 1024;
    return message("%1.%2", bytes / mebibyte, bytes % mebibyte * 10 / mebibyte);
}

}  // namespace

ProgressLine::ProgressLine(sys::platform::StandardStream stream)
    : isTerminal_(sys::platform::redrawsLines(stream)),
      width_(isTerminal_ ? sys::platform::terminalWidth(stream) : 0) {}

String ProgressLine::Redraw(String const& text) {
    if (!isTerminal_) {
        return {};
    }
    // The last column stays empty: some terminals begin a new line after it.
    String const line = text.Left(std::max(width_ - 1, 0));
    int const covered = std::max(drawn_ - line.GetLength(), 0);
    drawn_ = line.GetLength() + covered;
    return message("\r%1%2", line, String::OfChar(' ', covered));
}

String ProgressLine::Erase() {
    if (drawn_ == 0) {
        return {};
    }
    String text = message("\r%1\r", String::OfChar(' ', drawn_));
    drawn_ = 0;
    return text;
}

String ProgressLine::TransferText(char const* verb, long long done, long long total,
                                  long long rate) const {
    int const percent = percentOf(done, total);
    String text = message("  %1 %2%3%  %4 of %5 MiB  %6 MiB/s", verb, BarOf(percent), percent,
                          mebibytes(done), mebibytes(total), mebibytes(rate));
    if (rate > 0) {
        text.Append(message("  %1 left", minutesAndSeconds((total - done) / rate)));
    }
    return text;
}

String ProgressLine::BarOf(int percent) const {
    if (width_ < columnsForBar) {
        return "";
    }
    int const full = barCells * percent / 100;
    return message("[%1%2]  ", String::OfChar('#', full), String::OfChar('.', barCells - full));
}

String minutesAndSeconds(long long seconds) {
    return message(seconds % 60 < 10 ? "%1:0%2" : "%1:%2", seconds / 60, seconds % 60);
}

}  // namespace program
