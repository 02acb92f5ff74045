#pragma once

namespace core {

/// Watches a copy, and may end it. Implemented by whoever shows its progress.
class ICopyCallback {
public:
    virtual ~ICopyCallback() = default;

    /// Called before the first piece and after each one with the bytes copied so far and those
    /// to be copied in all: what the source's size said at the start, -1 when it has none. False
    /// cancels the copy.
    virtual bool Copied(long long done, long long total) = 0;
};

}  // namespace core
