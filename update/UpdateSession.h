#pragma once

#include "core/net/IPv4Address.h"
#include "core/net/Socket.h"
#include "core/runtime/CountDownTimer.h"
#include "core/text/String.h"
#include "update/protocol/records.h"

namespace update {

/// What one session knows, from its options on. Its end closes the connection.
struct UpdateSession {
    core::String path;  ///< of the update file
    core::IPv4Address address;
    core::Socket socket{core::SocketDomain::IPv4, core::SocketType::stream};
    int fileSize = 0;  ///< bytes
    unsigned int fileCrc = 0;
    unsigned int acceptToken = 0;
    UpdateNotification response;  ///< the last one received
};

/// How an attempt to send a number of bytes ended.
enum class SendOutcome { sent, failed, stalled };

/// Sends all bytes without ever blocking inside a send: a peer that takes one byte and then none
/// would keep a blocking send past every limit. Each byte taken restarts the stall timer.
SendOutcome sendAll(core::Socket& socket, void const* data, int length,
                    core::CountDownTimer& stall);

}  // namespace update
