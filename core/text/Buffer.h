#pragma once

#include <vector>

namespace core {

/// An owned block of bytes, which may include NUL. Copies are deep.
class Buffer {
public:
    Buffer() = default;
    Buffer(void const* data, int size) { Set(data, size); }

    /// Replaces the content by size bytes from data; clears if data is null or size is below 1.
    void Set(void const* data, int size);
    /// Appends size bytes, truncated where the buffer would exceed INT_MAX bytes. Does nothing if
    /// data is null or size is below 1.
    void Append(void const* data, int size);
    void Append(Buffer const& other);
    /// Truncates the buffer or pads it with NUL; a negative size is 0. Throws std::bad_alloc if out
    /// of memory, leaving the buffer unchanged.
    void SetSize(int size);
    void Clear() { bytes_.clear(); }

    /// Returns the first byte, or null if empty; valid until the buffer changes.
    unsigned char* GetData() { return bytes_.empty() ? nullptr : bytes_.data(); }
    unsigned char const* GetData() const { return bytes_.empty() ? nullptr : bytes_.data(); }
    int GetSize() const { return static_cast<int>(bytes_.size()); }
    bool IsEmpty() const { return bytes_.empty(); }
    bool operator==(Buffer const& other) const = default;

private:
    std::vector<unsigned char> bytes_;
};

}  // namespace core
