#include "tests/device/ScenarioDevice.h"

#include <gtest/gtest.h>

#include <chrono>

#include "device/Scenario.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/lines.h"

ScenarioDevice::ScenarioDevice(Act act, device::DeviceTimeouts const& timeouts,
                               device::UpdatePolicy const& policy) {
    behaviour_.act = std::move(act);
    server_ = std::make_unique<device::DeviceServer>(behaviour_, record_, timeouts, policy);
    server_->AddBind("127.0.0.1|0");
    server_->StartListen();
}

ScenarioDevice::ScenarioDevice(std::string const& text)
    : ScenarioDevice([scenario = scenarioOf(text)](device::StepContext const& context,
                                                   device::DeviceConnection& connection) mutable {
          return scenario.OnStep(context, connection);
      }) {}

device::Scenario ScenarioDevice::scenarioOf(std::string const& text) {
    support::TemporaryDirectory const folder;
    device::Scenario scenario;
    std::vector<core::Fault> errors;
    bool const loaded =
        device::loadScenario(folder.Write("scenario", text).c_str(), scenario, errors);
    EXPECT_TRUE(loaded) << text << core::faultLine(errors.at(0)).getCString();
    return scenario;
}

ScenarioDevice::~ScenarioDevice() = default;

std::string ScenarioDevice::Address() const {
    return support::replaced(server_->GetBoundName(0).getCString(), "|", ":");
}

std::string ScenarioDevice::Port() const {
    std::string const address = Address();
    return address.substr(address.find(':') + 1);
}

std::vector<device::UpdateResult> ScenarioDevice::End(std::size_t sessions) {
    std::unique_lock locked(record_.mutex);
    record_.ended.wait_for(locked, std::chrono::seconds(20),
                           [&] { return record_.results.size() >= sessions; });
    locked.unlock();
    server_.reset();
    return record_.results;
}

bool ScenarioDevice::ScriptedBehaviour::OnStep(device::StepContext const& context,
                                               device::DeviceConnection& connection) {
    return act ? act(context, connection) : Behaviour::OnStep(context, connection);
}

void ScenarioDevice::Record::add(std::string& all, void const* bytes, int length) {
    all.append(static_cast<char const*>(bytes), static_cast<std::size_t>(length));
}

void ScenarioDevice::Record::OnData(void const* bytes, int length) {
    add(file, bytes, length);
    add(received, bytes, length);
}

void ScenarioDevice::Record::OnEnd(device::UpdateResult result) {
    {
        std::lock_guard locked(mutex);
        results.push_back(result);
    }
    ended.notify_all();
}
