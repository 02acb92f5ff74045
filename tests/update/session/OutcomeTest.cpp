#include <gtest/gtest.h>

#include <memory>
#include <thread>

#include "tests/device/ScenarioDevice.h"
#include "tests/support/TemporaryDirectory.h"
#include "update/session/Session.h"

namespace {

using namespace update;

TEST(Failure, DeliveredAndRetryFollowFromPhaseKindAndStatus) {
    using Row = std::pair<std::string, std::string>;
    Row const phases[] = {{"start", "nothing"},        {"connection", "nothing"},
                          {"request", "request"},      {"header", "request"},
                          {"transfer", "partOfFile"},  {"trailer", "perhapsAll"},
                          {"completion", "perhapsAll"}};
    Row const kinds[] = {{"input", "never"},   {"system", "never"}, {"connection", "safe"},
                         {"lost", "safe"},     {"timeout", "safe"}, {"protocol", "never"},
                         {"rejected", "never"}};
    for (int i = 0; auto const& [phase, delivered] : phases) {
        Phase const reached{i++};
        EXPECT_EQ(nameOf(reached), phase);
        bool const isLate = delivered == "perhapsAll";
        for (int j = 0; auto const& [kind, retry] : kinds) {
            Failure const failure{{}, Failure::Kind{j++}, reached};
            EXPECT_EQ(nameOf(failure.kind), kind);
            EXPECT_EQ(nameOf(failure.GetDelivered()), delivered);
            EXPECT_EQ(nameOf(failure.GetRetry()), isLate ? "checkFirst" : retry) << phase << kind;
        }
        for (std::uint32_t status = 0; status <= 16; ++status) {
            bool const isTransient = status == 6 || status == 7 || status == 9;
            Failure const failure{{}, Failure::Kind::rejected, reached, status};
            EXPECT_EQ(nameOf(failure.GetRetry()), std::string(isLate        ? "checkFirst"
                                                              : isTransient ? "safe"
                                                                            : "never"));
        }
    }
}

Task taskFor(std::string const& path, std::string const& address) {
    Task task{path.c_str(), {}};
    EXPECT_FALSE(readDevice(address.c_str(), task.device));
    return task;
}

/// Returns "phase kind status" of a failure, or "complete" and the restart kind.
std::string textOf(Outcome const& outcome) {
    if (outcome.IsComplete()) {
        return "complete " + std::to_string(outcome.restart);
    }
    Failure const& failure = *outcome.failure;
    return std::string(nameOf(failure.phase)) + " " + nameOf(failure.kind) +
           (failure.status ? std::string(" ").append(std::to_string(*failure.status)) : "");
}

TEST(Session, ReturnsWhereAndWhyItFailed) {
    support::TemporaryDirectory const directory;
    SessionObserver observer;
    for (auto const& [scenario, expected] :
         {std::pair<std::string, std::string>{"request = silent", "request timeout"},
          {"request = notify Error:SystemBusy", "request rejected 6"},
          {"request = garbage 16", "request protocol"},
          {"request = notify Complete", "request protocol"},
          {"header = notify ErrorAlt:16", "header rejected 16"},
          {"header = wrongCrc Accepted", "header protocol"},
          {"header = reset", "transfer lost"},
          {"data = wait 86400000", "transfer timeout"},
          {"trailer = notify Error:GhostError", "completion rejected 14"},
          {"complete = silent", "completion timeout"},
          {"complete = notify 9", "completion protocol"},
          {"complete = notify Complete:3", "complete 3"}}) {
        // More than an operating system buffers, where the transfer is to fail.
        bool const large = expected.starts_with("transfer");
        std::string const path = directory.Write("u", std::string(large ? 16'000'000 : 1, 'x'));
        SessionTimeouts timeouts;
        timeouts.headerAnswer = scenario.starts_with("header") ? timeouts.headerAnswer : 20;
        if (expected.ends_with("timeout")) {
            timeouts.requestAnswer = timeouts.transferStall = timeouts.completion = 200;
            timeouts.notification = 50;
        }
        ScenarioDevice const device(scenario);
        Task const task = taskFor(path, device.Address());
        EXPECT_EQ(textOf(Session(task, observer, timeouts).Run()), expected) << scenario;
    }
    ScenarioDevice const device;
    EXPECT_EQ(textOf(Session(taskFor("", device.Address()), observer).Run()), "request input");
    EXPECT_EQ(textOf(Session(taskFor("", "127.0.0.0"), observer).Run()), "connection connection");
}

TEST(Session, RunsOnSeveralThreadsAtOnce) {
    support::TemporaryDirectory const directory;
    std::string const content(1'000'000, 'x');
    ScenarioDevice devices[2];
    Task task = taskFor(directory.Write("u", content), devices[0].Address());
    SessionObserver observer;
    auto first = std::make_unique<Session>(task, observer);
    Outcome outcome;
    std::thread thread([&] { outcome = first->Run(); });
    EXPECT_FALSE(readDevice(devices[1].Address().c_str(), task.device));
    Session second(task, observer);
    EXPECT_TRUE(second.Run().IsComplete());
    thread.join();
    EXPECT_TRUE(outcome.IsComplete());
    for (ScenarioDevice& device : devices) {
        device.End();
        EXPECT_TRUE(device.File() == content);
    }
    // A path that the session shared would be a data race, which the thread sanitizer reports.
    std::thread last([&] { first.reset(); });
    core::String const copy = task.path;
    last.join();
}

}  // namespace
