#pragma once

namespace core {

/// The outcome of a network operation: 0 is success, every other value a reason.
using SocketResult = unsigned int;

/// The reasons that the library itself tells apart; SocketResult.cpp holds the whole table.
namespace socket_result {
inline constexpr SocketResult success = 0;
inline constexpr SocketResult failed = 1;
inline constexpr SocketResult wrongState = 4;  ///< already open, or not open
inline constexpr SocketResult invalid = 11;
inline constexpr SocketResult noAddress = 12;  ///< the name gave no address
inline constexpr SocketResult emptyAddress = 13;
}  // namespace socket_result

/// The result for an errno value. 0 gives success, or failed when force is set.
SocketResult SocketResultFrom_errno(int error, bool force);
/// The result for the platform's resolver error number; 0 gives success.
SocketResult SocketResultFrom_EAI(int error);

}  // namespace core
