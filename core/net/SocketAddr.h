#pragma once

#include <array>

#include "core/net/SocketResult.h"
#include "core/net/SocketTypes.h"
#include "core/object/BasicClass.h"
#include "core/text/String.h"

namespace core {

/// A copy of one address of the platform's socket interface.
class SocketAddr : public BasicClass {
public:
    /// The empty address.
    SocketAddr() = default;
    /// Copies as many bytes as the absolute value of length says. An address that is too long for
    /// any domain stays empty.
    SocketAddr(void const* bytes, int length);

    char const* ClassName() const override;

    void const* GetBytes() const { return bytes_.data(); }
    /// The length as it was given, which may be negative; 0 for the empty address.
    int GetLength() const { return length_; }
    /// Its absolute value: the bytes in use.
    int GetSize() const { return length_ < 0 ? -length_ : length_; }
    SocketDomain GetDomain() const;
    bool IsTheSameOf(SocketAddr const& other) const;

    /// The address as host and service text. With numeric no name server is asked. The service is
    /// always a number. On failure the outputs are untouched.
    SocketResult GetName(String& host, String& service, bool numeric) const;
    /// The same as host "|" service.
    SocketResult GetName(String& out, bool numeric) const;

private:
    alignas(8) std::array<unsigned char, sys::platform::addressRoom> bytes_{};
    int length_ = 0;
};

}  // namespace core
