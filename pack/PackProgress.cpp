#include "pack/PackProgress.h"

#include "core/console/Console.h"
#include "core/runtime/Application.h"

namespace pack {

using core::Console;
using core::String;

namespace {

long long const reportStep = 32LL << 20;  ///< bytes from one report to the next
int const runningColor = 11;

}  // namespace

bool PackProgress::Copied(long long done, long long total) {
    bool const goesOn = !core::Application::IsTerminationRequested();
    if (done < next_) {
        return goesOn;
    }
    // The first call only sets the pace.
    if (next_ > 0 && !verb_.IsEmpty()) {
        line_.Show(String::format(">   %1 by now: %2 of %3")
                       .argi(1, verb_)
                       .argi(2, sizeInColor(done - done % reportStep, runningColor))
                       .argi(3, core::FormatByteSize(total, false)));
    }
    next_ = (done / reportStep + 1) * reportStep;
    return goesOn;
}

String fileCount(int count) {
    return String::format(count == 1 ? "%1 file" : "%1 files").argi(1, count);
}

String sizeInColor(long long bytes, int color) {
    return Console::color(core::FormatByteSize(bytes, false), Console::Color{color});
}

}  // namespace pack
