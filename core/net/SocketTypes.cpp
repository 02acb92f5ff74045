#include "core/net/SocketTypes.h"

#include <cerrno>

namespace core {

namespace {

struct ErrnoRow {
    int error;
    SocketResult result;
};

/// The numbers are published: 9 and 10 remain unused.
constexpr ErrnoRow errnoTable[] = {
    {ENOMEM, 6},        {EFAULT, 7},         {EBADF, 11},        {EINVAL, 11},
    {ENOBUFS, 12},      {ENOTSOCK, 13},      {ENOTCONN, 14},     {EACCES, 15},
    {EADDRINUSE, 16},   {EADDRNOTAVAIL, 17}, {ELOOP, 18},        {ENAMETOOLONG, 19},
    {ENOENT, 20},       {ENOTDIR, 21},       {EROFS, 22},        {EPERM, 23},
    {EAFNOSUPPORT, 24}, {EALREADY, 25},      {ECONNREFUSED, 26}, {EINPROGRESS, 27},
    {EINTR, 28},        {EISCONN, 29},       {ENETUNREACH, 30},  {ETIMEDOUT, 31},
    {EOPNOTSUPP, 32},   {EWOULDBLOCK, 33},   {ECONNABORTED, 34}, {EMFILE, 35},
    {ENFILE, 36},       {EPROTO, 37},
};

}  // namespace

int GetPosixDomain(SocketDomain domain, SocketType) {
    return sys::platform::domainNumber(domain);
}

int GetPosixType(SocketDomain, SocketType type) {
    return sys::platform::typeNumber(type);
}

int GetPosixProtocol(SocketDomain, SocketType type) {
    return sys::platform::protocolNumber(type);
}

SocketResult SocketResultFrom_errno(int error, bool force) {
    if (error == 0) {
        return force ? socket_result::failed : socket_result::success;
    }
    for (ErrnoRow const& row : errnoTable) {
        if (row.error == error) {
            return row.result;
        }
    }
    return socket_result::failed;
}

SocketResult SocketResultFrom_EAI(int error) {
    using sys::platform::ResolverFailure;
    if (error == 0) {
        return socket_result::success;
    }
    switch (sys::platform::resolverFailure(error)) {
        case ResolverFailure::temporary:
            return 2;
        case ResolverFailure::badFlags:
            return 3;
        case ResolverFailure::permanent:
            return 4;
        case ResolverFailure::family:
            return 5;
        case ResolverFailure::memory:
            return 6;
        case ResolverFailure::noName:
            return 8;
        case ResolverFailure::other:
            break;
    }
    return socket_result::failed;
}

}  // namespace core
