#pragma once

#include <array>

#include "core/net/SocketTypes.h"
#include "core/object/BasicClass.h"
#include "core/text/String.h"

namespace core {

/// A copy of a socket address of the platform.
class SocketAddr : public BasicClass {
public:
    /// The empty address.
    SocketAddr() = default;
    /// Copies as many bytes as the absolute value of length. If that is too long for any domain,
    /// the address is empty.
    SocketAddr(void const* bytes, int length);

    char const* ClassName() const override;

    void const* GetBytes() const { return bytes_.data(); }
    /// Returns the length as given, possibly negative; 0 for the empty address.
    int GetLength() const { return length_; }
    /// Returns the absolute value of the length.
    int GetSize() const { return length_ < 0 ? -length_ : length_; }
    SocketDomain GetDomain() const;
    bool IsTheSameOf(SocketAddr const& other) const;

    /// Gets host and service as text. With numeric, the host is an address instead of a name; the
    /// service is always a number. On failure the outputs are unchanged.
    SocketResult GetName(String& host, String& service, bool numeric) const;
    /// Gets host "|" service.
    SocketResult GetName(String& out, bool numeric) const;

private:
    alignas(8) std::array<unsigned char, sys::platform::maxAddressLength> bytes_{};
    int length_ = 0;
};

}  // namespace core
