#include "tests/device/ScenarioDevice.h"

#include <gtest/gtest.h>

#include <chrono>

#include "tests/support/TemporaryDirectory.h"
#include "tests/support/lines.h"

ScenarioDevice::ScenarioDevice(Act act, device::DeviceTimeouts const& timeouts,
                               device::UpdatePolicy const& policy) {
    behaviour_.act = std::move(act);
    server_ = std::make_unique<device::DeviceServer>(behaviour_, recorder_, timeouts, policy);
    server_->AddBind("127.0.0.1|0");
    server_->StartListen();
}

ScenarioDevice::ScenarioDevice(std::string const& text)
    : ScenarioDevice([scenario = scenarioOf(text)](device::StepContext const& context,
                                                   device::DeviceConnection& connection) mutable {
          return scenario.OnStep(context, connection);
      }) {}

device::Scenario ScenarioDevice::scenarioOf(std::string const& text) {
    support::TemporaryDirectory const directory;
    device::Scenario scenario;
    std::vector<core::Fault> errors;
    bool const loaded =
        device::loadScenario(directory.Write("scenario", text).c_str(), scenario, errors);
    EXPECT_TRUE(loaded) << text << core::faultLine(errors.at(0)).getCString();
    return scenario;
}

std::string ScenarioDevice::Address() const {
    return support::replaced(server_->GetBoundName(0).getCString(), "|", ":");
}

std::string ScenarioDevice::Port() const {
    std::string const address = Address();
    return address.substr(address.find(':') + 1);
}

std::vector<device::UpdateResult> ScenarioDevice::End(std::size_t sessions) {
    std::unique_lock locked(recorder_.mutex);
    recorder_.ended.wait_for(locked, std::chrono::seconds(20),
                             [&] { return recorder_.results.size() >= sessions; });
    locked.unlock();
    server_.reset();
    return recorder_.results;
}

void ScenarioDevice::Recorder::OnData(void const* bytes, int length) {
    file.append(static_cast<char const*>(bytes), static_cast<std::size_t>(length));
}

void ScenarioDevice::Recorder::OnEnd(device::UpdateResult result) {
    std::lock_guard const locked(mutex);
    results.push_back(result);
    ended.notify_all();
}
