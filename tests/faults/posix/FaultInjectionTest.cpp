#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <map>
#include <optional>
#include <regex>

#include "tests/device/ScenarioDevice.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/lines.h"
#include "tests/support/posix/SmallDisk.h"
#include "tests/update/TestedUpdater.h"

namespace {

namespace fs = std::filesystem;
using support::contentOf;
using Files = std::map<std::string, std::string>;

/// The other end of the connection, in this process and without faults.
enum class Peer { none, device, updater };

struct Scenario {
    std::string name;
    std::string command;  ///< "@" is the directory, "ADDRESS" that of the device
    std::string modes;    ///< see faultInjection.cpp; d: the disk is full
    Peer peer = Peer::none;
    std::vector<std::string> old = {};  ///< files in work/ to be replaced
};

struct RunResult {
    std::string output;
    int status = 0;
    std::string fault;       ///< the call that failed, or the number of calls that can
    Files files;             ///< in work/ afterwards
    bool succeeded = false;  ///< by its own report
    bool peerSucceeded = false;
};

bool contains(std::string const& text, std::string const& part) {
    return text.find(part) != std::string::npos;
}

class FaultInjection : public testing::TestWithParam<std::pair<Scenario, char>> {
protected:
    FaultInjection() {
        fs::create_directory(work_);
        directory_.Write("a", std::string(30'000, 'a'));
        directory_.Write("b", "b");
        directory_.Write("m.conf",
                         "crypt = All\nuniqueId = 1\ntargetId = t\nfile.count = 2\n"
                         "file[0].origin = a\nfile[0].destination = dir/a\nfile[1].origin = b\n");
        Prepare();
        for (std::string const& name : scenario_.old) {
            before_[name] = "old";
        }
        Run("f0", RAVELINK_PACK " -b @m.conf -o @a.rvl");
        directory_.Write("tail.rvl", contentOf(directory_.PathOf("a.rvl")) + "tail");
        TestedUpdater::Instance().UseProductTimeouts();
    }

    void Prepare() {
        for (auto const& entry : fs::directory_iterator(work_)) {
            fs::remove_all(entry);
        }
        fs::create_directory(work_ + "/tmp");
        fs::create_directory(work_ + "/dir");
        for (auto const& [name, content] : before_) {
            directory_.Write("work/" + name, content);
        }
    }

    RunResult Run(std::string const& fault, std::string command) {
        std::string const report = directory_.PathOf("report");
        fs::remove(report);
        command = "timeout 20 env LD_PRELOAD=" RAVELINK_FAULTS
                  " ASAN_OPTIONS=exitcode=99 TMPDIR=@work/tmp FAULT_REPORT=@report FAULT=" +
                  fault + " " + command + " 2>&1";
        command = support::replaced(command, "ADDRESS", device_.Address());
        int const before = completed_;
        command = support::replaced(command, "@", directory_.Path() + "/");
        std::FILE* const pipe = popen(command.c_str(), "r");
        RunResult result;
        char text[4096];
        while (std::fgets(text, sizeof text, pipe) != nullptr) {
            std::string const line(text);
            if (line.starts_with("- Listening on: ") && contains(line, "127.")) {
                // A device without memory drops the connection and waits for the next.
                for (int i = fault[0] == 'm' ? 0 : 1; i < 2 && !result.peerSucceeded; ++i) {
                    result.peerSucceeded =
                        TestedUpdater::Instance()
                            .RunSession(directory_.PathOf("a.rvl"), line.substr(line.find("127.")))
                            .back() == updated;
                }
            }
            result.output += line.starts_with("  System is still updating.") ? "" : line;
        }
        std::regex const port("(..ffff.)?127.0.0.1[:-][0-9]+");
        result.output = std::regex_replace(result.output, port, "PORT");
        int const status = pclose(pipe);
        result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        result.fault = contentOf(report);
        for (auto const& entry : fs::recursive_directory_iterator(work_)) {
            if (entry.is_regular_file()) {
                std::string const name = entry.path().lexically_relative(work_).string();
                result.files[std::regex_replace(name, port, "PORT")] = contentOf(entry.path());
            }
        }
        result.succeeded =
            scenario_.peer == Peer::device ? contains(result.output, updated) : result.status == 0;
        result.peerSucceeded = result.peerSucceeded || completed_ > before;
        return result;
    }

    /// A file with a final name must have its old or its new content.
    void ExpectWholeFiles(RunResult const& result, RunResult const& expected,
                          std::string const& temporary) {
        for (auto const& file : result.files) {
            EXPECT_TRUE(std::count(before_.begin(), before_.end(), file) > 0 ||
                        std::count(expected.files.begin(), expected.files.end(), file) > 0 ||
                        std::regex_search(file.first, std::regex(temporary)))
                << file.first;
        }
    }

    void ExpectTruth(RunResult const& result, RunResult const& expected) {
        char const mode = GetParam().second;
        EXPECT_TRUE(result.status == 0 || (result.status == 1 && scenario_.peer != Peer::device));
        if (!result.succeeded) {
            EXPECT_TRUE(contains(result.output, "*** ") || contains(result.output, "\"error\":{"));
            // A read error must not be reported as an invalid file.
            EXPECT_FALSE(std::regex_search(result.output, std::regex("truncated|your math")));
            // Without memory the device may fail after sending Complete.
            EXPECT_FALSE(result.peerSucceeded && scenario_.peer == Peer::updater && mode != 'm');
        } else if (scenario_.peer == Peer::none) {
            EXPECT_EQ(result.output, expected.output);
        } else if (scenario_.peer == Peer::device) {
            EXPECT_TRUE(result.peerSucceeded);
        } else {
            EXPECT_TRUE(contains(result.output, "- Archive: valid, files: 2"));
        }
        EXPECT_TRUE(!result.succeeded ||
                    std::includes(result.files.begin(), result.files.end(), expected.files.begin(),
                                  expected.files.end()));
    }

    Scenario const& scenario_ = GetParam().first;
    Files before_;  ///< in work/ when the program starts
    support::TemporaryDirectory directory_;
    std::string const work_ = directory_.PathOf("work");
    std::atomic<int> completed_ = 0;
    /// Accepts only valid archives, so that a completed update is one received intact.
    ScenarioDevice device_{
        [this](device::StepContext const& context, device::DeviceConnection& connection) {
            completed_ += context.step == device::Step::complete ? 1 : 0;
            return device::Behaviour().OnStep(context, connection);
        },
        {},
        {true, {}}};
};

TEST_P(FaultInjection, ReportsTheTruthAndLeavesNoPartialFiles) {
    std::string const mode(1, GetParam().second);
    Prepare();
    RunResult const expected = Run(mode + "0", scenario_.command);
    ASSERT_TRUE(expected.succeeded) << expected.output;
    // Partial transfers and interruptions must not change the result; they occur in many calls.
    bool const mustSucceed = mode == "s" || mode == "i";
    update::SessionTimeouts const defaults = TestedUpdater::Instance().timeouts;
    update::SessionTimeouts timeouts = defaults;
    if (!mustSucceed) {
        timeouts.requestAnswer = timeouts.completion = 150;
        timeouts.notification = 50;
    }
    std::optional<support::SmallDisk> disk;
    if (mode == "d" && !disk.emplace(work_).IsMounted()) {
        GTEST_SKIP() << "mounting a disk needs root";
    }
    long const last = disk ? 14 : mustSucceed ? 7 : std::atol(expected.fault.c_str());
    if (mode == "m" && last == 0) {
        GTEST_SKIP() << "sanitizers replace the allocator";
    }
    ASSERT_GT(last, 0);
    // A device allocates hundreds of times: test every fifth.
    for (long number = 1; number <= last; number += mode == "m" ? 5 : 1) {
        if (disk) {
            before_["filler"] = std::string(static_cast<std::size_t>(number) * 4096, 'x');
        }
        Prepare();
        TestedUpdater::Instance().timeouts = timeouts;
        RunResult const result =
            Run(mode + (disk ? "0" : std::to_string(number)), scenario_.command);
        SCOPED_TRACE(mode + std::to_string(number) + " " + result.fault + "\n" + result.output);
        if (mode == "k") {
            ExpectWholeFiles(result, expected, "\\.part-|status$");
            // Files left by the killed process must not affect the next.
            TestedUpdater::Instance().timeouts = defaults;
            RunResult const next = Run("k0", scenario_.command);
            EXPECT_TRUE(next.succeeded) << next.output;
            ExpectTruth(next, expected);
            continue;
        }
        ExpectWholeFiles(result, expected, result.fault.starts_with("unlink") ? "" : "^$");
        if (mode == "w") {
            // Only a list has no result besides its output.
            EXPECT_EQ(result.succeeded, scenario_.name != "List");
            continue;
        }
        ExpectTruth(result, expected);
        EXPECT_TRUE(!mustSucceed || (result.succeeded && result.output == expected.output));
        EXPECT_FALSE(disk && number == last && result.succeeded) << "the disk was full";
    }
}

std::vector<std::pair<Scenario, char>> cases() {
    std::string const build = RAVELINK_PACK " -b @m.conf -o @work/a.rvl";
    std::string const extract = RAVELINK_PACK " -x @a.rvl -d @work";
    std::vector<std::pair<Scenario, char>> all;
    // The slowest first, so that they run in parallel with the others.
    for (Scenario const& scenario : {
             Scenario{"Store", RAVELINK_DEVICE " --once -c -d @work -b 127.0.0.1:0", "fsikdm",
                      Peer::updater},
             Scenario{"Update", RAVELINK " -o @a.rvl -a ADDRESS", "fsikm", Peer::device},
             Scenario{"Build", build, "fwsikdm"},
             Scenario{"Rebuild", build, "fkd", Peer::none, {"a.rvl"}},
             Scenario{"Extract", extract + "/new", "fsidm"},
             Scenario{"Replace", extract + " -f", "fkd", Peer::none, {"b", "dir/a"}},
             Scenario{"Check", RAVELINK_PACK " -c @tail.rvl", "fsim"},
             Scenario{"List", RAVELINK_PACK " -l @a.rvl -j", "fwsim"},
         }) {
        for (char const mode : scenario.modes) {
            all.emplace_back(scenario, mode);
        }
    }
    return all;
}

INSTANTIATE_TEST_SUITE_P(Programs, FaultInjection, testing::ValuesIn(cases()), [](auto const& row) {
    return row.param.first.name + "_" + row.param.second;
});

}  // namespace
