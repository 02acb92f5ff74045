#pragma once

#include <concepts>

#include "core/text/String.h"

namespace core {

/// A short tag (a file's magic, a record's kind) kept and compared as one integer: character i is
/// byte i in memory, on any machine. A tag of fewer characters ends with NUL bytes, of a longer
/// text only the front is taken. MChar4 holds 4 characters, MChar8 holds 8.
template <class Word>
class MChar {
public:
    static constexpr int Size = sizeof(Word);

    MChar() = default;
    template <std::integral Value>
    MChar(Value value) : value_(static_cast<Word>(value)) {}
    /// Null counts as the empty text.
    MChar(char const* text) { set(text != nullptr ? text : ""); }
    MChar(String const& text) { set(text.View()); }

    /// The Size bytes, without a NUL behind them.
    char const* ptr() const { return reinterpret_cast<char const*>(&value_); }
    operator Word() const { return value_; }
    /// The characters up to the first NUL.
    operator String() const { return String(ptr(), Size); }

    bool operator==(MChar const& other) const { return value_ == other.value_; }
    template <std::integral Value>
    bool operator==(Value const& value) const {
        return value_ == static_cast<Word>(value);
    }
    bool operator==(String const& text) const { return *this == MChar(text); }
    bool operator==(char const* text) const { return *this == MChar(text); }

    /// For logs: always Size characters, "?" for each byte outside 0x20..0x7F. DEL is shown as it
    /// is, as it always was in our logs.
    String SafeDump() const;

private:
    void set(std::string_view text) {
        text = text.substr(0, sizeof value_);
        std::memcpy(&value_, text.data(), text.size());
    }

    Word value_ = 0;
};

extern template class MChar<unsigned int>;
extern template class MChar<unsigned long long>;

}  // namespace core
