#pragma once

#include <atomic>

#include "device/Observer.h"

namespace device {

/// Prints what happens on a connection.
class Reporter : public Observer {
public:
    /// With once the first conversation that ends also ends the application.
    explicit Reporter(bool once);

    /// Whether the last conversation ended in a complete update.
    bool Completed() const { return completed_; }

    void OnConnection(core::String const& peer) override;
    void OnRequest(update::UpdateRequest const& request) override;
    void OnHeader(update::UpdateTransferHeader const& header) override;
    void OnFile(std::uint32_t size, std::uint32_t crc) override;
    void OnArchive(int result, int files) override;
    void OnTrailer(update::UpdateTransferTrailer const& trailer) override;
    void OnNotification(std::uint32_t code, std::uint32_t value) override;
    void OnEnd(Outcome outcome) override;

private:
    bool const once_;
    std::atomic<bool> completed_ = false;
};

}  // namespace device
