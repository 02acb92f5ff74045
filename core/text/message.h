#pragma once

#include <charconv>
#include <span>
#include <string_view>
#include <vector>

#include "core/text/String.h"
#include "core/text/StringArray.h"

namespace core {

/// An argument of message(): a string, copied verbatim, or an integer, in decimal. It refers to the
/// string, which must outlive it.
class MessageValue {
public:
    MessageValue(String const& text) : text_(text.View()) {}
    MessageValue(char const* text) : text_(text != nullptr ? text : "") {}
    template <std::integral Number>
    MessageValue(Number number)
        : text_(digits_, std::to_chars(digits_, digits_ + sizeof digits_, +number).ptr) {}
    MessageValue(MessageValue const&) = delete;
    MessageValue& operator=(MessageValue const&) = delete;

    std::string_view View() const { return text_; }

private:
    char digits_[24];
    std::string_view text_;
};

/// Returns pattern with %1 to %9 replaced by the values, in one pass: values are not searched. A
/// placeholder without a value, and every other percent sign, stays.
[[nodiscard]] String fillMessage(char const* pattern, std::span<MessageValue const> values);
template <class... Values>
[[nodiscard]] String message(char const* pattern, Values const&... values) {
    MessageValue const list[] = {values..., ""};  // never of size 0
    return fillMessage(pattern, {list, sizeof...(values)});
}

/// Returns "0x" and value in hexadecimal, zero-padded to at least digits digits.
[[nodiscard]] String hex(unsigned long long value, int digits);

/// Returns the operating system's description of an error number, at most 2048 characters. On
/// Windows, numbers are system error codes, not errno values: 13 is "The data is invalid.".
[[nodiscard]] String errnoDescription(int number);
/// Returns the C library's description of an errno value, at most 2048 characters, on all systems:
/// 13 is "Permission denied".
[[nodiscard]] String cLibraryErrorText(int number);

/// An error as users see it: "*** title: message". Create it with fault() only: the test of
/// docs/errors.md finds all errors by that name.
struct Fault {
    String title;
    String message;
};

/// Returns the error with the filled pattern as its message.
template <class... Values>
[[nodiscard]] Fault fault(char const* title, char const* pattern, Values const&... values) {
    return {title, message(pattern, values...)};
}

/// Returns the errors of entries "title=message", as Application::CommandLinePrepare collects them.
[[nodiscard]] std::vector<Fault> faultsFromEntries(StringArray const& entries);

/// Returns the line "*** title: message", safe for a terminal: see printable().
[[nodiscard]] String faultLine(Fault const& error);
/// Returns the lines of all errors; of more than 20 only the first 20 and a line that counts the
/// rest.
[[nodiscard]] std::vector<String> faultLines(std::vector<Fault> const& errors);

}  // namespace core
