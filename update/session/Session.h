#pragma once

#include <cstdint>
#include <optional>

#include "core/net/IPv4Address.h"
#include "core/net/Socket.h"
#include "core/runtime/CountDownTimer.h"
#include "core/text/String.h"
#include "update/protocol/records.h"
#include "update/session/Outcome.h"
#include "update/session/SessionObserver.h"
#include "update/session/exchange.h"

namespace update {

class UpdateFile;

/// The rules of a strict session, whose failures show whether a script can repeat the update.
/// Unlike a plain session it
/// - sends an opened and measured file, without a trailer if the file has changed since;
/// - fails when the connection is closed or reset, after reading the records before that;
/// - reads records while it sends: any but the report of a stage ends the session before the
///   trailer;
/// - has a timeout for connecting, and a deadline for all steps before the trailer.
/// File and deadline must outlive the session.
struct StrictRules {
    UpdateFile& file;
    int connectTimeout;                              ///< ms
    core::CountDownTimer const* deadline = nullptr;  ///< null: none
};

/// A file and the device to update with it.
struct Task {
    core::String path;
    core::IPv4Address device;             ///< with its port
    StrictRules const* strict = nullptr;  ///< must outlive the session; null: a plain session
};

/// Returns the failure if path is not a readable regular file.
[[nodiscard]] std::optional<Failure> checkFile(core::String const& path);

/// Reads "A.B.C.D" or "A.B.C.D:Port" into device; the port is defaultPort if text has none. Returns
/// the failure if text is not such an address, or its port is not from 1 to largestPort. Host names
/// are not resolved.
[[nodiscard]] std::optional<Failure> readDevice(core::String const& text,
                                                core::IPv4Address& device);

/// The timeouts of a session, in milliseconds.
struct SessionTimeouts {
    static constexpr int completionMinutes = 5;

    int requestAnswer = 10'000;  ///< for the answer to the request
    int headerAnswer = 2'000;    ///< for an answer to the header, which is optional
    int transferStall = 60'000;  ///< since the last byte that the device accepted
    int completion = completionMinutes * 60'000;  ///< from the trailer to the end, in total
    int notification = 10'000;                    ///< for each notification after the trailer
};

/// Sends one file to one device and follows the update to its end, on the calling thread. Prints
/// nothing and needs no core::Application. Sessions on several threads are independent. A session
/// cannot be cancelled: that would leave the device half updated.
class Session {
public:
    /// The observer must outlive the session.
    Session(Task const& task, SessionObserver& observer, SessionTimeouts const& timeouts = {});
    Session(Session const&) = delete;
    Session& operator=(Session const&) = delete;

    /// Runs the whole session and closes the connection; call once. Unless the session is strict,
    /// connecting waits as long as the operating system does, all else as long as the timeouts.
    /// Initialises the socket library meanwhile. Throws nothing but std::bad_alloc and the
    /// exceptions of the observer.
    [[nodiscard]] Outcome Run();

private:
    // The steps, in order. Each returns false if the session has failed.
    bool Connect();
    bool ReadSizeAndCrc();
    bool SendRequest();
    bool SendHeader();
    bool SendFile();
    bool SendTrailer();
    bool AwaitCompletion();

    bool ConnectTo(core::String const& peer);
    bool SendChunk(char const* chunk, int length, core::CountDownTimer& stall);
    SendResult Send(void const* data, int length, core::CountDownTimer& stall);
    /// Reports progress if it is time to.
    void ReportSending(core::CountDownTimer const& stall);
    template <class Record>
    bool SendRecord(Record const& record);
    /// Receives and checks a notification within ms milliseconds and passes a valid one on to the
    /// observer.
    std::optional<Failure> Receive(UpdateNotification& notification, int ms);
    /// Judges what a strict session has received, without waiting. Returns false if the session has
    /// failed.
    bool LookBack();
    /// Returns ms, or the time until the deadline if that is shorter.
    int Limited(int ms) const;
    /// Whether a strict session has reached its deadline before the trailer.
    bool IsTimeUp() const;

    /// Ends the session with a failure of the current phase. Returns false.
    bool Fail(Failure const& failure);
    /// Fails for a result other than SendResult::sent, with the fault unless the device or the
    /// deadline gives a better reason.
    bool FailToSend(SendResult result, core::Fault const& fault);

    int FileSize() const { return static_cast<int>(request_.fileSize); }

    Task task_;
    SessionObserver& observer_;
    SessionTimeouts const timeouts_;
    std::optional<core::Socket> socket_;  ///< while the session runs
    UpdateRequest request_;
    std::uint32_t acceptToken_ = 0;
    RecordReader reader_;  ///< of a strict session
    int sent_ = 0;         ///< bytes of the file
    core::CountDownTimer report_;
    Phase phase_ = Phase::start;
    Outcome outcome_;
};

}  // namespace update
