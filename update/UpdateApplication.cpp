#include "update/UpdateApplication.h"

#include "sys/platform/Process.h"
#include "update/print.h"
#include "update/usage.h"

namespace update {

using core::String;

UpdateApplication::UpdateApplication() : core::Application("ravelink") {
    // A device must not be left half updated because somebody closed a window.
    sys::platform::outliveTerminal();
    setVersionModelName("Halvoren");
    setVersionNumber(RAVELINK_VERSION_MAJOR, RAVELINK_VERSION_MINOR);
    setDevStage(core::version::CEDevStage::release);
    setDescription("Ethernet Updater\n");
}

void UpdateApplication::Main(int argc, char const* const* argv) {
    println(getVersionLong(true), true);
    CommandLinePrepare(argc, argv, optionGrammar, errors);
    if (errors.Count() > 0) {
        showErrors();
        showUsage();
        return;
    }
    if (FindOption("h")) {
        showUsage();
        return;
    }
    Run();
}

bool UpdateApplication::QuitWithError(String const& title, String const& message, bool show) {
    if (title.GetLength() > 0) {
        errors.Add(title, message);
    }
    RequestTermination(normalRequest);
    if (show) {
        showErrors();
    }
    return false;
}

void UpdateApplication::showErrors() const {
    for (int i = 0; i < errors.Count(); ++i) {
        println(errorLine(errors[i]), true);
    }
    println("", true);
}

}  // namespace update
