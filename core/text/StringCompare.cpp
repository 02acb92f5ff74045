#include <algorithm>
#include <cstring>

#include "core/text/String.h"
#include "core/text/mapCharacters.h"

namespace core {

namespace {

constexpr char whiteSpace[] = " \t\r\n";
constexpr char punctuation[] = ".,:;!?";

char unchanged(char c) {
    return c;
}

template <class Fold>
int compare(std::string_view left, std::string_view right, Fold fold) {
    auto const [l, r] = std::mismatch(left.begin(), left.end(), right.begin(), right.end(),
                                      [&](char a, char b) { return fold(a) == fold(b); });
    if (l == left.end() || r == right.end()) {
        return static_cast<int>(l != left.end()) - static_cast<int>(r != right.end());
    }
    return static_cast<signed char>(fold(*l)) < static_cast<signed char>(fold(*r)) ? -1 : 1;
}

bool equalIC(std::string_view left, std::string_view right) {
    return compare(left, right, String::ToUpper) == 0;
}

std::string_view last(std::string_view text, std::size_t count) {
    return text.substr(text.size() - std::min(count, text.size()));
}

}  // namespace

int String::Compare(String const& other) const {
    return SameRef(other) ? 0 : compare(View(), other.View(), unchanged);
}

int String::Compare(char const* other) const {
    return compare(View(), other != nullptr ? other : "", unchanged);
}

int String::CompareIC(String const& other) const {
    return SameRef(other) ? 0 : compare(View(), other.View(), ToUpper);
}

bool String::StartsWith(String const& prefix) const {
    return View().starts_with(prefix.View());
}

bool String::StartsWithIC(String const& prefix) const {
    std::string_view const wanted = prefix.View();
    return equalIC(View().substr(0, wanted.size()), wanted);
}

bool String::EndsWith(String const& suffix) const {
    return View().ends_with(suffix.View());
}

bool String::EndsWithIC(String const& suffix) const {
    std::string_view const wanted = suffix.View();
    return equalIC(last(View(), wanted.size()), wanted);
}

String String::UpperCase() const {
    return mapCharacters(*this, ToUpper);
}

String String::LowerCase() const {
    return mapCharacters(*this, ToLower);
}

String String::CapitalCase() const {
    bool first = true;
    return mapCharacters(*this, [&first](char c) {
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
