#include <algorithm>

#include "core/text/Buffer.h"
#include "core/text/String.h"

namespace core {

namespace {

/// Returns the substring of text at start, with start and count clamped to it.
std::string_view substring(std::string_view text, int start, int count) {
    std::size_t const from = std::min(static_cast<std::size_t>(std::max(start, 0)), text.size());
    return text.substr(from, count < 0 ? std::string_view::npos : static_cast<std::size_t>(count));
}

/// Returns the length of an occurrence of pattern.
int lengthOf(char) {
    return 1;
}

int lengthOf(String const& pattern) {
    return pattern.GetLength();
}

String partBefore(String const& text, int found) {
    return found > 0 ? text.Left(found) : String();
}

template <class Pattern>
String partAfter(String const& text, int found, Pattern const& pattern) {
    return found >= 0 ? text.Copy(found + lengthOf(pattern)) : String();
}

}  // namespace

String String::Copy(int start, int count) const {
    return Join(substring(View(), start, count));
}

String String::Copy(int start, int count, int secondStart, int secondCount) const {
    std::string_view const text = View();
    return Join(substring(text, start, count), substring(text, secondStart, secondCount));
}

String String::CopyRange(int from, int to, bool inclusive) const {
    int const start = std::max(from, 0);
    int const end = inclusive && to < INT_MAX ? to + 1 : to;
    return end > start ? Copy(start, end - start) : String();
}

String String::Right(int count) const {
    int const length = GetLength();
    return count < 0 || count >= length ? *this : Copy(length - count);
}

String String::LeftOf(char c) const {
    return partBefore(*this, Find(c));
}

String String::LeftOf(String const& pattern) const {
    return partBefore(*this, Find(pattern));
}

String String::LeftOfIC(char c) const {
    return partBefore(*this, FindIC(c));
}

String String::LeftOfIC(String const& pattern) const {
    return partBefore(*this, FindIC(pattern));
}

String String::RightOf(char c) const {
    return partAfter(*this, Find(c), c);
}

String String::RightOf(String const& pattern) const {
    return partAfter(*this, Find(pattern), pattern);
}

String String::RightOfIC(char c) const {
    return partAfter(*this, FindIC(c), c);
}

String String::RightOfIC(String const& pattern) const {
    return partAfter(*this, FindIC(pattern), pattern);
}

String String::RightBy(char c) const {
    return partAfter(*this, RFind(c), c);
}

String String::RightBy(String const& pattern) const {
    return partAfter(*this, RFind(pattern), pattern);
}

String String::RightByIC(char c) const {
    return partAfter(*this, RFindIC(c), c);
}

String String::RightByIC(String const& pattern) const {
    return partAfter(*this, RFindIC(pattern), pattern);
}

char String::GetChar(int index) const {
    std::string_view const text = View();
    return index >= 0 && static_cast<std::size_t>(index) < text.size()
               ? text[static_cast<std::size_t>(index)]
               : '\0';
}

char String::LastChar() const {
    std::string_view const text = View();
    return text.empty() ? '\0' : text.back();
}

void String::SetChar(int index, char c) {
    if (index < 0 || index >= GetLength()) {
        return;
    }
    if (c == '\0') {
        SetLength(index);
        return;
    }
    CopyOnWrite(-1);
    data_->buffer[index] = c;
}

void String::Insert(String const& text, int position) {
    std::string_view const whole = View();
    std::string_view const head = whole.substr(0, static_cast<std::size_t>(std::max(position, 0)));
    Splice(head, text.View(), whole.substr(head.size()));
}

void String::Delete(int start, int count) {
    std::string_view const text = View();
    std::string_view const removed = substring(text, start, count);
    if (removed.empty()) {
        return;
    }
    auto const from = static_cast<std::size_t>(removed.data() - text.data());
    Splice(text.substr(0, from), {}, text.substr(from + removed.size()));
}

void String::DeleteFromRight(int count) {
    int const length = GetLength();
    Delete(count < 0 ? 0 : length - std::min(count, length));
}

void String::Append(String const& text) {
    if (data_ == nullptr) {
        SetString(text);
    } else {
        AppendPart(text.View());
    }
}

void String::Append(char const* text) {
    AppendPart(text != nullptr ? text : "");
}

void String::Append(char c) {
    AppendPart({&c, c != '\0' ? 1U : 0U});
}

void String::Append(Buffer const& bytes) {
    String text;
    text.SetBuffer(bytes);
    Append(text);
}

String& String::operator+=(String const& text) {
    Append(text);
    return *this;
}

String& String::operator+=(char const* text) {
    Append(text);
    return *this;
}

String String::AppendNew(String const& text) const {
    return IsEmpty() ? text : Join(View(), text.View());
}

String String::AppendNew(char const* text) const {
    return Join(View(), text != nullptr ? text : "");
}

String String::AppendNew(char c) const {
    return Join(View(), {&c, c != '\0' ? 1U : 0U});
}

String String::AppendNew(Buffer const& bytes) const {
    String result(*this);
    result.Append(bytes);
    return result;
}

String operator+(char const* left, String const& right) {
    return String(left).AppendNew(right);
}

String operator+(char left, String const& right) {
    return String::OfChar(left, 1).AppendNew(right);
}

}  // namespace core
