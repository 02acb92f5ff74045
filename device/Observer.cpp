#include "device/Observer.h"

namespace device {

Observer::~Observer() = default;

void Observer::OnConnection(core::String const&) {}

void Observer::OnReceived(void const*, int) {}

void Observer::OnSent(void const*, int) {}

void Observer::OnRequest(update::UpdateRequest const&) {}

void Observer::OnHeader(update::UpdateTransferHeader const&) {}

void Observer::OnData(void const*, int) {}

void Observer::OnFile(std::uint32_t, std::uint32_t) {}

void Observer::OnArchive(int, int) {}

void Observer::OnNotChecked(int, core::String const&) {}

void Observer::OnStored(int, core::String const&) {}

void Observer::OnTrailer(update::UpdateTransferTrailer const&) {}

void Observer::OnNotification(std::uint32_t, std::uint32_t) {}

void Observer::OnEnd(Outcome) {}

}  // namespace device
