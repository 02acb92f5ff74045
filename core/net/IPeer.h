#pragma once

#include "core/text/String.h"

namespace core {

/// Something with another side to connect to.
class IPeer {
public:
    virtual ~IPeer();

    /// Connects to the target; true when connected, also when it was already.
    virtual bool Connect() = 0;
    virtual bool IsConnected() const = 0;
    /// Copies the target's text; true while connected.
    virtual bool GetTarget(String& target) const = 0;
    /// Stores the target for a later Connect.
    virtual void SetTarget(String const& target) = 0;
};

}  // namespace core
