#pragma once

#include "core/text/String.h"

namespace core {

/// One end of a connection to a peer, the target.
class IPeer {
public:
    virtual ~IPeer() = default;

    /// Connects to the target unless already connected; true if connected.
    virtual bool Connect() = 0;
    virtual bool IsConnected() const = 0;
    /// Copies the target's address, host "|" service; true if connected.
    virtual bool GetTarget(String& target) const = 0;
    /// Stores the target for a later Connect.
    virtual void SetTarget(String const& target) = 0;
};

}  // namespace core
