#pragma once

#include <vector>

namespace core {

/// A block of bytes, owned; copies are copies. NUL is a byte like any other.
class Buffer {
public:
    Buffer() = default;
    Buffer(void const* data, int size) { Set(data, size); }

    /// Copies size bytes; empty when data is null or size below 1.
    void Set(void const* data, int size);
    /// Copies size more bytes behind what is there; null or a size below 1 change nothing.
    void Append(void const* data, int size);
    void Append(Buffer const& other);
    /// Cuts the block, or fills it up with NUL; a size below 0 counts as 0. Without the memory for
    /// it (std::bad_alloc) the block stays as it was.
    void SetSize(int size);
    void Clear() { bytes_.clear(); }

    /// The first byte; null when empty. Valid until the buffer changes.
    unsigned char* GetData() { return bytes_.empty() ? nullptr : bytes_.data(); }
    unsigned char const* GetData() const { return bytes_.empty() ? nullptr : bytes_.data(); }
    int GetSize() const { return static_cast<int>(bytes_.size()); }
    bool IsEmpty() const { return bytes_.empty(); }
    bool operator==(Buffer const& other) const = default;

private:
    std::vector<unsigned char> bytes_;
};

}  // namespace core
