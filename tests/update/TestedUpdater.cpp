#include "tests/update/TestedUpdater.h"

#include "tests/support/lines.h"

TestedUpdater& TestedUpdater::Instance() {
    static TestedUpdater updater;
    return updater;
}

void TestedUpdater::UseProductLimits() {
    limits = {};
    // Honest devices are silent here, so it only costs time.
    limits.headerAnswer = 20;
}

std::vector<std::string> TestedUpdater::RunSession(std::string const& path,
                                                   std::string const& address) {
    errors.Clear();
    char const* const words[] = {"ravelink", "-o", path.c_str(), "-a", address.c_str()};
    CommandLinePrepare(5, words, "o|origin=1>a|address=1", errors);
    return support::linesOf(support::outputOf([this] { Init(); }));
}
