#pragma once

namespace core {

/// Receives the progress of a copy, to display it; may cancel the copy.
class ICopyCallback {
public:
    virtual ~ICopyCallback() = default;

    /// Called before the first chunk and after each one, with the bytes copied so far and the
    /// total: the size of the source at the start, -1 if it is unknown. Returning false cancels the
    /// copy.
    virtual bool Copied(long long done, long long total) = 0;
};

}  // namespace core
