#pragma once

#include <optional>

#include "core/net/IPv4Address.h"
#include "core/text/String.h"
#include "job/verdict.h"

namespace job {

/// The address of a device: four decimal octets or a host name, and a port. Unlike that of
/// ravelink it has one meaning only: a mistyped number is an error, not another device.
class Address {
public:
    /// Reads "HOST" or "HOST:PORT"; the port is update::defaultPort if text has none. Returns
    /// whether text is an address.
    bool Parse(core::String const& text);

    /// Stores the IPv4 address, which a name must have exactly one of. Waits as long as the
    /// operating system's name resolution does. Returns the error of a name.
    [[nodiscard]] std::optional<Error> Resolve(core::IPv4Address& device) const;

private:
    core::String host_;
    bool isName_ = false;
    int port_ = 0;
};

}  // namespace job
