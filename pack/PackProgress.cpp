#include "pack/PackProgress.h"

#include "core/console/lines.h"
#include "core/runtime/Application.h"
#include "core/text/message.h"
#include "sys/scheduler.h"

namespace pack {

using core::Console;
using core::String;

namespace {

long long now() {
    return static_cast<long long>(sys::scheduler::getcurrtickms());
}

}  // namespace

PackProgress::PackProgress(char const* verb, Output output)
    : verb_(verb), output_(output), line_(sys::platform::StandardStream::output) {
    meter_.Start(now());
}

PackProgress::~PackProgress() {
    if (String const text = line_.Erase(); !text.IsEmpty()) {
        core::printText(text);
    }
}

bool PackProgress::Copied(long long done, long long total) {
    if (output_ == Output::terminal && line_.IsShown() && meter_.IsReportDue(now())) {
        meter_.Add(now(), done);
        core::printText(line_.Redraw(line_.TransferText(verb_, done, total, meter_.Rate())));
    }
    return !core::Application::IsTerminationRequested();
}

String fileCount(int count) {
    return core::message(count == 1 ? "%1 file" : "%1 files", count);
}

String sizeInColor(long long bytes, Console::Color color) {
    return Console::color(core::FormatByteSize(bytes, false), color);
}

}  // namespace pack
