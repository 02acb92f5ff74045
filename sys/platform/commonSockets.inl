// The calls that have the same names on both platforms. Sockets.cpp includes this once, after the
// headers of its platform.

namespace sys::platform {

namespace {

sockaddr const* asAddress(void const* address) {
    return static_cast<sockaddr const*>(address);
}

addrinfo const* asInfo(ResolvedEntry const* entry) {
    return reinterpret_cast<addrinfo const*>(entry);
}

int waitForConnect(SocketHandle socket, int ms, int (*result)(SocketHandle)) {
    int const ready = waitWritable(socket, ms);
    if (ready <= 0) {
        return ready == 0 ? -ETIMEDOUT : ready;
    }
    return result(socket);
}

struct OptionName {
    int level;
    int name;
};

OptionName nameOf(SocketOption option) {
    switch (option) {
        case SocketOption::noDelay:
            return {IPPROTO_TCP, TCP_NODELAY};
        case SocketOption::broadcast:
            return {SOL_SOCKET, SO_BROADCAST};
        case SocketOption::multicastLoopback:
            return {IPPROTO_IP, IP_MULTICAST_LOOP};
        case SocketOption::multicastTtl:
            return {IPPROTO_IP, IP_MULTICAST_TTL};
        case SocketOption::receiveBuffer:
            return {SOL_SOCKET, SO_RCVBUF};
    }
    return {};
}

int nameOf(SocketTimeout which) {
    return which == SocketTimeout::receive ? SO_RCVTIMEO : SO_SNDTIMEO;
}

}  // namespace

int domainNumber(SocketDomain domain) {
    switch (domain) {
        case SocketDomain::IPv4:
            return AF_INET;
        case SocketDomain::IPv6:
            return AF_INET6;
        default:
            return AF_UNSPEC;
    }
}

int typeNumber(SocketType type) {
    switch (type) {
        case SocketType::stream:
            return SOCK_STREAM;
        case SocketType::datagram:
            return SOCK_DGRAM;
        default:
            return 0;
    }
}

int protocolNumber(SocketType type) {
    switch (type) {
        case SocketType::stream:
            return IPPROTO_TCP;
        case SocketType::datagram:
            return IPPROTO_UDP;
        default:
            return 0;
    }
}

SocketDomain domainOf(void const* address, int length) {
    if (length < static_cast<int>(sizeof(sockaddr::sa_family))) {
        return SocketDomain::unspecified;
    }
    switch (asAddress(address)->sa_family) {
        case AF_INET:
            return SocketDomain::IPv4;
        case AF_INET6:
            return SocketDomain::IPv6;
        default:
            return SocketDomain::unspecified;
    }
}

int resolve(char const* host, char const* service, SocketDomain domain, SocketType type,
            ResolvedEntry*& chain) {
    addrinfo hints{};
    hints.ai_family = domainNumber(domain);
    hints.ai_socktype = typeNumber(type);
    hints.ai_protocol = protocolNumber(type);
    addrinfo* found = nullptr;
    // On a machine without a network, AI_ADDRCONFIG would not even find 127.0.0.1: resolve numeric
    // addresses without it.
    hints.ai_flags = AI_NUMERICHOST | AI_V4MAPPED;
    int error = getaddrinfo(host, service, &hints, &found);
    if (error == EAI_NONAME) {
        hints.ai_flags = AI_ADDRCONFIG | AI_V4MAPPED;
        error = getaddrinfo(host, service, &hints, &found);
    }
    if (error == 0) {
        chain = reinterpret_cast<ResolvedEntry*>(found);
    }
    return error;
}

void freeResolved(ResolvedEntry* chain) {
    freeaddrinfo(reinterpret_cast<addrinfo*>(chain));
}

ResolvedEntry* nextResolved(ResolvedEntry const* entry) {
    return reinterpret_cast<ResolvedEntry*>(asInfo(entry)->ai_next);
}

void const* resolvedAddress(ResolvedEntry const* entry, int& length) {
    length = static_cast<int>(asInfo(entry)->ai_addrlen);
    return asInfo(entry)->ai_addr;
}

int resolvedFamilyNumber(ResolvedEntry const* entry) {
    return asInfo(entry)->ai_family;
}

int resolvedTypeNumber(ResolvedEntry const* entry) {
    return asInfo(entry)->ai_socktype;
}

int resolvedProtocolNumber(ResolvedEntry const* entry) {
    return asInfo(entry)->ai_protocol;
}

int nameOfAddress(void const* address, int length, char* host, int hostSize, char* service,
                  int serviceSize, bool numeric) {
    int const flags = NI_NUMERICSERV | (numeric ? NI_NUMERICHOST : 0);
    return getnameinfo(asAddress(address), static_cast<socklen_t>(length), host,
                       static_cast<socklen_t>(hostSize), service,
                       static_cast<socklen_t>(serviceSize), flags);
}

ResolverFailure resolverFailure(int error) {
    switch (error) {
        case EAI_AGAIN:
            return ResolverFailure::temporary;
        case EAI_BADFLAGS:
            return ResolverFailure::badFlags;
        case EAI_FAIL:
            return ResolverFailure::permanent;
        case EAI_FAMILY:
            return ResolverFailure::family;
        case EAI_MEMORY:
            return ResolverFailure::memory;
        case EAI_NONAME:
            return ResolverFailure::noName;
        default:
            return ResolverFailure::other;
    }
}

}  // namespace sys::platform
