#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <map>
#include <regex>
#include <sstream>

#include "tests/device/ScenarioDevice.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/lines.h"
#include "tests/support/posix/SmallDisk.h"
#include "tests/support/system.h"
#include "tests/update/TestedUpdater.h"

namespace {

namespace fs = std::filesystem;
using Files = std::map<std::string, std::string>;

/// What the program under torture talks with, sound and in this process.
enum class Peer { none, device, updater };

struct Scenario {
    std::string name;
    std::string command;  ///< "@" stands for the folder, "ADDRESS" for the device's
    std::string modes;    ///< see faultyCalls.cpp; d: the disk is full
    Peer peer = Peer::none;
    Files before = {};  ///< what lies in work/ when the program starts
};

struct Ran {
    std::string output;
    int status = 0;
    std::string fault;  ///< the call that went wrong
    long calls = 0;     ///< that could have
    Files files;        ///< what lies in work/ then
    bool claims = false;
    bool peerClaims = false;
};

std::string const updated = "The device is updated and it will restart itself if needed.";

bool contains(std::string const& text, std::string const& part) {
    return text.find(part) != std::string::npos;
}

std::string contentOf(fs::path const& path) {
    std::stringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    return content.str();
}

class Torture : public testing::TestWithParam<std::pair<Scenario, char>> {
protected:
    Torture() {
        fs::create_directory(folder_.PathOf("in"));
        fs::create_directory(folder_.PathOf("work"));
        folder_.Write("in/a", std::string(30'000, 'a'));
        folder_.Write("in/b", "b");
        folder_.Write("in/m.conf",
                      "crypt = All\nuniqueId = 1\ntargetId = t\nfile.count = 2\n"
                      "file[0].origin = a\nfile[0].destination = dir/a\nfile[1].origin = b\n");
        Prepare();
        Run("f0", RAVELINK_PACK " -b @in/m.conf -o @in/a.rvl");
        folder_.Write("in/tail.rvl", contentOf(folder_.PathOf("in/a.rvl")) + "tail");
        TestedUpdater::Instance().limits = {};
        TestedUpdater::Instance().limits.headerAnswer = 20;
    }

    void Prepare() {
        for (auto const& entry : fs::directory_iterator(folder_.PathOf("work"))) {
            fs::remove_all(entry);
        }
        fs::create_directory(folder_.PathOf("work/tmp"));
        fs::create_directory(folder_.PathOf("work/dir"));
        for (auto const& [name, content] : scenario_.before) {
            folder_.Write("work/" + name, content);
        }
    }

    Ran Run(std::string const& fault, std::string command) {
        std::string const report = folder_.PathOf("report");
        fs::remove(report);
        command = "timeout 20 env LD_PRELOAD=" RAVELINK_FAULTS
                  " ASAN_OPTIONS=exitcode=99 TMPDIR=@work/tmp FAULT_REPORT=@report FAULT=" +
                  fault + " " + command + " 2>&1";
        command = support::replaced(command, "ADDRESS", device_.Address());
        std::FILE* const pipe =
            support::openPipe(support::replaced(command, "@", folder_.Path() + "/"));
        Ran ran;
        int const before = completed_;
        std::string line;
        for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) {
            line += static_cast<char>(c);
            if (c == '\n') {
                if (line.starts_with("- Listening on: ") && contains(line, "127.")) {
                    ran.peerClaims =
                        TestedUpdater::Instance()
                            .RunSession(folder_.PathOf("in/a.rvl"), line.substr(line.find("127.")))
                            .back() == updated;
                }
                ran.output += line.starts_with("  System is still updating.") ? "" : line;
                line.clear();
            }
        }
        ran.output = std::regex_replace(ran.output, std::regex("127.0.0.1:[0-9]+"), "");
        ran.status = support::closePipe(pipe);
        std::vector<std::string> const reported = support::linesOf(contentOf(report));
        if (!reported.empty()) {
            ran.fault = reported.front();
            ran.calls = std::atol(reported.back().c_str());
        }
        for (auto const& entry : fs::recursive_directory_iterator(folder_.PathOf("work"))) {
            if (entry.is_regular_file()) {
                ran.files[entry.path().lexically_relative(folder_.PathOf("work")).string()] =
                    contentOf(entry.path());
            }
        }
        bool const updates = scenario_.peer == Peer::device;
        ran.claims = updates ? contains(ran.output, updated) : ran.status == 0;
        ran.peerClaims = ran.peerClaims || completed_ > before;
        return ran;
    }

    /// Nothing but what was there or is to be there may lie under a final name.
    void ExpectWholeFiles(Ran const& ran, Ran const& sound, std::string const& temporary) {
        for (auto const& [name, content] : ran.files) {
            auto const is = [&, &name = name, &content = content](Files const& files) {
                auto const found = files.find(name);
                return found != files.end() && found->second == content;
            };
            EXPECT_TRUE(is(scenario_.before) || is(sound.files) ||
                        std::regex_search(name, std::regex(temporary)))
                << name;
        }
    }

    void ExpectTruth(Ran const& ran, Ran const& sound) {
        EXPECT_TRUE(ran.status == 0 || (ran.status == 1 && scenario_.peer != Peer::device));
        if (!ran.claims) {
            EXPECT_TRUE(contains(ran.output, "*** ") || contains(ran.output, "\"error\":{"));
            EXPECT_FALSE(contains(ran.output, "cut short")) << "and not: could not be read";
        } else if (scenario_.peer == Peer::none) {
            EXPECT_EQ(ran.output, sound.output);
        } else if (scenario_.peer == Peer::device) {
            EXPECT_TRUE(ran.peerClaims);
        } else {
            EXPECT_TRUE(contains(ran.output, "- Archive: sound, files in it: 2"));
        }
        EXPECT_TRUE(!ran.claims || std::includes(ran.files.begin(), ran.files.end(),
                                                 sound.files.begin(), sound.files.end()));
    }

    Scenario const scenario_ = GetParam().first;
    support::TemporaryFolder folder_;
    std::atomic<int> completed_ = 0;
    /// It takes nothing but sound archives, so that what it completes it has received.
    ScenarioDevice device_{[this](device::Moment const& moment, device::Wire& wire) {
                               completed_ += moment.step == device::Step::Complete ? 1 : 0;
                               return device::Behaviour().Act(moment, wire);
                           },
                           {},
                           ScenarioDevice::Content::archives};
};

class FullDisk : public Torture {};

TEST_P(Torture, NoLieAndNothingHalfDone) {
    std::string const mode(1, GetParam().second);
    Prepare();
    Ran const sound = Run(mode + "0", scenario_.command);
    ASSERT_TRUE(sound.claims) << sound.output;
    bool const patient = mode == "s" || mode == "i";
    if (!patient) {
        update::SessionLimits& limits = TestedUpdater::Instance().limits;
        limits.requestAnswer = limits.completion = 150;
        limits.notification = 50;
    }
    ASSERT_GT(sound.calls, 0);
    for (long call = 1; call <= sound.calls; ++call) {
        Prepare();
        Ran const ran = Run(mode + std::to_string(call), scenario_.command);
        SCOPED_TRACE(mode + std::to_string(call) + " " + ran.fault + "\n" + ran.output);
        if (mode == "k") {
            ExpectWholeFiles(ran, sound, "\\.copy-|\\.unpacking-|Vorx-|status$");
            // The next one is not troubled by what the killed one left.
            EXPECT_TRUE(Run("k0", scenario_.command).claims);
            continue;
        }
        ExpectWholeFiles(ran, sound, ran.fault.starts_with("unlink") ? "" : "^$");
        if (mode == "w") {
            // Only a list is nothing but its output.
            EXPECT_EQ(ran.claims, scenario_.name != "List");
            continue;
        }
        ExpectTruth(ran, sound);
        if (patient) {
            EXPECT_TRUE(ran.claims);
            EXPECT_EQ(ran.output, sound.output);
        }
    }
}

TEST_P(FullDisk, NoLieAndNothingHalfDone) {
    Prepare();
    Ran const sound = Run("f0", scenario_.command);
    support::SmallDisk const disk(folder_.PathOf("work"));
    if (!disk.IsMounted()) {
        GTEST_SKIP() << "only root may mount a small disk";
    }
    int claims = 0;
    int const pages = 16;
    for (int page = 0; page < pages; ++page) {
        Prepare();
        folder_.Write("work/filler", std::string(page * 4096, 'x'));
        Ran const ran = Run("f0", scenario_.command);
        SCOPED_TRACE(ran.output);
        ExpectTruth(ran, sound);
        ExpectWholeFiles(ran, sound, "filler");
        claims += ran.claims ? 1 : 0;
    }
    EXPECT_TRUE(claims > 0 && claims < pages) << claims;
}

/// The cases of these modes.
std::vector<std::pair<Scenario, char>> cases(std::string const& modes) {
    std::vector<std::pair<Scenario, char>> all;
    for (Scenario const& scenario : std::vector<Scenario>{
             {"Build", RAVELINK_PACK " -b @in/m.conf -o @work/a.rvl", "fwsikd"},
             {"Rebuild",
              RAVELINK_PACK " -b @in/m.conf -o @work/a.rvl",
              "fkd",
              Peer::none,
              {{"a.rvl", "old"}}},
             {"Unpack", RAVELINK_PACK " -x @in/a.rvl -d @work/new", "fsid"},
             {"Replace",
              RAVELINK_PACK " -x @in/a.rvl -d @work -f",
              "fkd",
              Peer::none,
              {{"b", "old"}, {"dir/a", "old"}}},
             {"Check", RAVELINK_PACK " -c @in/tail.rvl", "fsi"},
             {"List", RAVELINK_PACK " -l @in/a.rvl -j", "fwsi"},
             {"Update", RAVELINK " -o @in/a.rvl -a ADDRESS", "fsik", Peer::device},
             {"Device", RAVELINK_DEVICE " --once --check -b 127.0.0.1:0", "fsi", Peer::updater},
         }) {
        for (char const mode : scenario.modes) {
            if (contains(modes, {mode})) {
                all.emplace_back(scenario, mode);
            }
        }
    }
    return all;
}

std::string nameOf(testing::TestParamInfo<std::pair<Scenario, char>> const& row) {
    return row.param.first.name + "_" + row.param.second;
}

INSTANTIATE_TEST_SUITE_P(Programs, Torture, testing::ValuesIn(cases("fwsik")), nameOf);
INSTANTIATE_TEST_SUITE_P(Programs, FullDisk, testing::ValuesIn(cases("d")), nameOf);

}  // namespace
