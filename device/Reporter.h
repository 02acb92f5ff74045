#pragma once

#include <atomic>
#include <string>

#include "core/runtime/CountDownTimer.h"
#include "core/text/String.h"
#include "device/Observer.h"

namespace device {

/// Prints what happens on the connections of one device.
class Reporter : public Observer {
public:
    enum class Detail {
        steps,
        bytes,  ///< also what travels, in hexadecimal, with the time since the connection opened
    };

    /// Lines begin with prefix. The first session that ends counts awaited (null: nothing)
    /// down, which ends the application at 0; it must outlive this object.
    Reporter(core::String const& prefix, Detail detail, std::atomic<int>* awaited);

    /// Whether the last session ended in a complete update.
    bool Completed() const { return completed_; }

    void OnConnection(core::String const& peer) override;
    void OnReceived(void const* bytes, int length) override;
    void OnSent(void const* bytes, int length) override;
    void OnRequest(update::UpdateRequest const& request) override;
    void OnHeader(update::UpdateTransferHeader const& header) override;
    void OnFile(std::uint32_t size, std::uint32_t crc) override;
    void OnArchive(int result, int files) override;
    void OnNotChecked(int error, core::String const& path) override;
    void OnStored(int result, core::String const& path) override;
    void OnTrailer(update::UpdateTransferTrailer const& trailer) override;
    void OnNotification(std::uint32_t code, std::uint32_t value) override;
    void OnEnd(UpdateResult result) override;

private:
    void Print(core::String const& line) const;
    /// A line of what travels, in the direction that the arrow says.
    void Trace(char const* arrow, core::String const& what) const;

    std::string const prefix_;  ///< several threads read it, so it is not a core::String
    Detail const detail_;
    std::atomic<int>* awaited_;
    std::atomic<bool> completed_ = false;
    core::CountDownTimer clock_;  ///< since the connection opened
};

}  // namespace device
