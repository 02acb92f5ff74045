#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

/// Splits an input from its start. After its end, bytes are 0 and strings empty.
class Input {
public:
    Input(std::uint8_t const* data, std::size_t size)
        : rest_(reinterpret_cast<char const*>(data), size) {}

    bool IsEmpty() const { return rest_.empty(); }
    unsigned char Byte() {
        std::string const byte = Bytes(1);
        return byte.empty() ? 0 : static_cast<unsigned char>(byte.front());
    }
    /// Returns count bytes, or fewer at the end.
    std::string Bytes(std::size_t count) {
        std::string const bytes(rest_.substr(0, count));
        rest_.remove_prefix(bytes.size());
        return bytes;
    }
    std::string Rest() { return Bytes(rest_.size()); }
    /// Returns the text up to a line feed or NUL, which is consumed as well.
    std::string Line() {
        std::size_t const length =
            std::min(rest_.find_first_of(std::string_view("\n", 2)), rest_.size());
        std::string const line = Bytes(length);
        Bytes(1);
        return line;
    }

private:
    std::string_view rest_;
};
