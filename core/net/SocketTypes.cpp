#include "core/net/SocketTypes.h"

namespace core {

int GetPosixDomain(SocketDomain domain, SocketType) {
    return sys::platform::domainNumber(domain);
}

int GetPosixType(SocketDomain, SocketType type) {
    return sys::platform::typeNumber(type);
}

int GetPosixProtocol(SocketDomain, SocketType type) {
    return sys::platform::protocolNumber(type);
}

}  // namespace core
