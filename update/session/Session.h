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

namespace update {

/// A file and the device to update with it.
struct Task {
    core::String path;
    core::IPv4Address device;  ///< with its port
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

    /// Runs the whole session and closes the connection; call once. Connecting waits as long as the
    /// operating system does, all else as long as the timeouts. Initialises the socket library
    /// meanwhile. Throws nothing but std::bad_alloc and the exceptions of the observer.
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

    bool SendChunk(char const* chunk, int length, core::CountDownTimer& stall);
    template <class Record>
    bool SendRecord(Record const& record);
    /// Receives and checks a notification within ms milliseconds and passes a valid one on to the
    /// observer.
    std::optional<Failure> Receive(UpdateNotification& notification, int ms);

    /// Ends the session with a failure of the current phase. Returns false.
    bool Fail(Failure const& failure);
    bool FailToCommunicate(Failure::Kind kind);
    bool FailToOpen();
    bool FailToRead();

    int FileSize() const { return static_cast<int>(request_.fileSize); }

    Task task_;
    SessionObserver& observer_;
    SessionTimeouts const timeouts_;
    std::optional<core::Socket> socket_;  ///< while the session runs
    UpdateRequest request_;
    std::uint32_t acceptToken_ = 0;
    Phase phase_ = Phase::start;
    Outcome outcome_;
};

}  // namespace update
