#pragma once

#include <concepts>

#include "core/text/String.h"

namespace core {

/// A short tag, such as a file's magic, stored and compared as one integer: MChar4 has 4
/// characters, MChar8 has 8. Character i is byte i in memory, on any byte order. Shorter
/// strings are padded with NUL, longer ones truncated.
template <class Word>
class MChar {
public:
    static constexpr int Size = sizeof(Word);

    MChar() = default;
    template <std::integral Value>
    MChar(Value value) : value_(static_cast<Word>(value)) {}
    /// Null is an empty string.
    MChar(char const* text) { Set(text != nullptr ? text : ""); }
    MChar(String const& text) { Set(text.View()); }

    /// Returns the Size bytes, without a terminating NUL.
    char const* ptr() const { return reinterpret_cast<char const*>(&value_); }
    operator Word() const { return value_; }
    /// Returns the characters up to the first NUL.
    operator String() const { return String(ptr(), Size); }

    bool operator==(MChar const& other) const { return value_ == other.value_; }
    template <std::integral Value>
    bool operator==(Value const& value) const {
        return value_ == static_cast<Word>(value);
    }
    bool operator==(String const& text) const { return *this == MChar(text); }
    bool operator==(char const* text) const { return *this == MChar(text); }

    /// Returns Size characters for logs, with "?" for each byte outside 0x20 to 0x7F. DEL stays:
    /// tools that read the logs expect it.
    String SafeDump() const;

private:
    void Set(std::string_view text) {
        text = text.substr(0, sizeof value_);
        std::memcpy(&value_, text.data(), text.size());
    }

    Word value_ = 0;
};

extern template class MChar<unsigned int>;
extern template class MChar<unsigned long long>;

}  // namespace core
