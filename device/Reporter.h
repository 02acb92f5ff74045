#pragma once

#include <atomic>
#include <string>

#include "core/runtime/CountDownTimer.h"
#include "device/Observer.h"

namespace device {

/// Prints the events of one device's connections.
class Reporter : public Observer {
public:
    enum class Detail {
        steps,
        bytes,  ///< also all traffic in hexadecimal, with the time since the connection opened
    };

    /// Each line begins with prefix. The end of the first update decrements awaited, which
    /// terminates the application at 0. A null awaited is ignored; otherwise it must outlive this
    /// object.
    Reporter(core::String const& prefix, Detail detail, std::atomic<int>* awaited);

    /// Whether the awaited update was completed.
    bool HasCompleted() const { return completed_; }

    /// Its lines begin with "busy NUMBER: " after the prefix.
    std::unique_ptr<Observer> CreateBusyObserver(std::uint32_t number) override;
    void OnConnection(core::String const& peer) override;
    void OnReceived(void const* bytes, int length) override;
    void OnSent(void const* bytes, int length) override;
    void OnRequest(update::UpdateRequest const& request) override;
    void OnHeader(update::UpdateTransferHeader const& header) override;
    void OnFile(std::uint32_t size, std::uint32_t crc) override;
    void OnArchive(ArchiveCheck const& check) override;
    void OnNotChecked(int error, core::String const& path) override;
    void OnStored(int result, core::String const& path) override;
    void OnTrailer(update::UpdateTransferTrailer const& trailer) override;
    void OnNotification(std::uint32_t code, std::uint32_t value) override;
    void OnEnd(UpdateResult result) override;

private:
    void Print(core::String const& line) const;
    /// Prints a line of traffic: arrow "<" for received, ">" for sent data.
    void Trace(char const* arrow, core::String const& data) const;

    std::string const prefix_;  ///< not a core::String: several threads read it
    Detail const detail_;
    std::atomic<int>* awaited_;
    std::atomic<bool> completed_ = false;
    core::CountDownTimer clock_;  ///< since the connection opened
};

}  // namespace device
