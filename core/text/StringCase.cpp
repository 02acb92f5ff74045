#include <cstring>

#include "core/text/String.h"
#include "core/text/mapped.h"

namespace core {

namespace {

constexpr char whiteSpace[] = " \t\r\n";
constexpr char punctuation[] = ".,:;!?";

}  // namespace

String String::UpperCase() const {
    return mapped(*this, ToUpper);
}

String String::LowerCase() const {
    return mapped(*this, ToLower);
}

String String::CapitalCase() const {
    bool first = true;
    return mapped(*this, [&first](char c) {
        char const result = first ? ToUpper(c) : ToLower(c);
        first = IsWhiteSpace(c);
        return result;
    });
}

bool String::IsWhiteSpace(char c) {
    return std::strchr(whiteSpace, c) != nullptr;
}

bool String::IsPuntuaction(char c) {
    return std::strchr(punctuation, c) != nullptr;
}

String String::Trim() const {
    return TrimLeft().TrimRight();
}

String String::TrimLeft() const {
    std::size_t const first = View().find_first_not_of(whiteSpace);
    return first != std::string_view::npos ? Copy(static_cast<int>(first)) : String();
}

String String::TrimRight() const {
    std::size_t const last = View().find_last_not_of(whiteSpace);
    return last != std::string_view::npos ? Left(static_cast<int>(last) + 1) : String();
}

}  // namespace core
