#include "pack/PackProgress.h"

#include "core/console/lines.h"
#include "core/runtime/Application.h"
#include "core/text/message.h"

namespace pack {

using core::Console;
using core::String;

namespace {

long long const reportStep = 32LL << 20;  ///< bytes between reports

}  // namespace

PackProgress::PackProgress(String const& verb) : verb_(verb) {
    // Its first report must not overwrite the last one of the work before.
    core::endReport();
}

bool PackProgress::Copied(long long done, long long total) {
    bool const goOn = !core::Application::IsTerminationRequested();
    if (done < next_) {
        return goOn;
    }
    // The first call only sets when to report: work of less than a step prints nothing.
    if (next_ > 0 && !verb_.IsEmpty()) {
        core::printReport(
            core::message(">   %1 by now: %2 of %3", verb_,
                          sizeInColor(done - done % reportStep, Console::Color::brightYellow),
                          core::FormatByteSize(total, false)));
    }
    next_ = (done / reportStep + 1) * reportStep;
    return goOn;
}

String fileCount(int count) {
    return core::message(count == 1 ? "%1 file" : "%1 files", count);
}

String sizeInColor(long long bytes, Console::Color color) {
    return Console::color(core::FormatByteSize(bytes, false), color);
}

}  // namespace pack
