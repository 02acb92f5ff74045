#include <gtest/gtest.h>

#include <memory>
#include <thread>

#include "tests/device/ScenarioDevice.h"
#include "tests/support/TemporaryDirectory.h"
#include "update/session/Session.h"

namespace {

using namespace update;

TEST(Failure, KindFollowsFromCauseAndRetryFromPhaseCauseAndStatus) {
    std::string kinds;
    for (int cause = 0; cause < 22; ++cause) {
        Failure const failure({}, Cause{cause});
        kinds += std::string(nameOf(failure.cause)) + ' ' + nameOf(failure.kind) +
                 (failure.GetRetry() == Retry::safe ? " safe\n" : "\n");
    }
    EXPECT_EQ(kinds,
              "noSockets system\nbadAddress input\nfileMissing input\nfileUnreadable input\n"
              "fileEmpty input\nfileTooBig input\nfileChanged input\n"
              "connectRefused connection safe\nconnectTimeout connection safe\n"
              "unreachable connection safe\nconnectFailed connection safe\nnoAnswer timeout safe\n"
              "connectionEnded lost safe\nconnectionReset lost safe\nsendFailed lost safe\n"
              "stalled timeout safe\ntimeUp timeout\nnotTheProtocol protocol\n"
              "damagedRecord protocol\nunexpectedRecord protocol\ndeviceError rejected\n"
              "completionTimeout timeout safe\n");
    std::string phases;
    for (int phase = 0; phase < 7; ++phase) {
        Failure failure({}, Cause::deviceError, Phase{phase}, 0);
        phases += std::string(nameOf(failure.phase)) + ' ' + nameOf(failure.GetDelivered()) + ' ' +
                  nameOf(failure.GetRetry());
        for (; failure.status <= 16u; ++*failure.status) {
            bool const isSafe = failure.GetRetry() == Retry::safe;
            phases += isSafe ? ' ' + std::to_string(*failure.status) : "";
        }
        phases += '\n';
    }
    EXPECT_EQ(phases,
              "start nothing never 6 7 9\nconnection nothing never 6 7 9\n"
              "request request never 6 7 9\nheader request never 6 7 9\n"
              "transfer partOfFile never 6 7 9\ntrailer perhapsAll checkFirst\n"
              "completion perhapsAll checkFirst\n");
}

Task taskFor(std::string const& path, std::string const& address) {
    Task task{path.c_str(), {}};
    EXPECT_FALSE(readDevice(address.c_str(), task.device));
    return task;
}

TEST(Session, RunsOnSeveralThreadsAtOnce) {
    support::TemporaryDirectory const directory;
    ScenarioDevice devices[2];
    Task task = taskFor(directory.Write("u", std::string(1'000'000, 'x')), devices[0].Address());
    SessionObserver observer;
    auto first = std::make_unique<Session>(task, observer);
    Outcome outcome;
    std::thread thread([&] { outcome = first->Run(); });
    EXPECT_FALSE(readDevice(devices[1].Address().c_str(), task.device));
    EXPECT_TRUE(Session(task, observer).Run().IsComplete());
    thread.join();
    EXPECT_EQ(outcome.restart, UpdateNotification::FirmwareRestart);
    // A path that the session shared would be a data race, which the thread sanitizer reports.
    std::thread last([&] { first.reset(); });
    core::String const copy = task.path;
    last.join();
}

}  // namespace
