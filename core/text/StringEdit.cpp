#include <algorithm>

#include "core/text/Buffer.h"
#include "core/text/String.h"

namespace core {

namespace {

/// The clipping rule of all positions and counts.
std::string_view piece(std::string_view text, int start, int count) {
    std::size_t const from = std::min(static_cast<std::size_t>(std::max(start, 0)), text.size());
    return text.substr(from, count < 0 ? std::string_view::npos : static_cast<std::size_t>(count));
}

/// The length of pattern's occurrence when there is one.
int lengthOf(char) {
    return 1;
}

int lengthOf(String const& pattern) {
    return pattern.GetLength();
}

String before(String const& text, int found) {
    return found > 0 ? text.Left(found) : String();
}

template <class Pattern>
String behind(String const& text, int found, Pattern const& pattern) {
    return found >= 0 ? text.Copy(found + lengthOf(pattern)) : String();
}

}  // namespace

String String::Copy(int start, int count) const {
    return joined(piece(View(), start, count));
}

String String::Copy(int start, int count, int secondStart, int secondCount) const {
    std::string_view const text = View();
    return joined(piece(text, start, count), piece(text, secondStart, secondCount));
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
    return before(*this, Find(c));
}

String String::LeftOf(String const& pattern) const {
    return before(*this, Find(pattern));
}

String String::LeftOfIC(char c) const {
    return before(*this, FindIC(c));
}

String String::LeftOfIC(String const& pattern) const {
    return before(*this, FindIC(pattern));
}

String String::RightOf(char c) const {
    return behind(*this, Find(c), c);
}

String String::RightOf(String const& pattern) const {
    return behind(*this, Find(pattern), pattern);
}

String String::RightOfIC(char c) const {
    return behind(*this, FindIC(c), c);
}

String String::RightOfIC(String const& pattern) const {
    return behind(*this, FindIC(pattern), pattern);
}

String String::RightBy(char c) const {
    return behind(*this, RFind(c), c);
}

String String::RightBy(String const& pattern) const {
    return behind(*this, RFind(pattern), pattern);
}

String String::RightByIC(char c) const {
    return behind(*this, RFindIC(c), c);
}

String String::RightByIC(String const& pattern) const {
    return behind(*this, RFindIC(pattern), pattern);
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
    std::string_view const front = whole.substr(0, static_cast<std::size_t>(std::max(position, 0)));
    setPieces(front, text.View(), whole.substr(front.size()));
}

void String::Delete(int start, int count) {
    std::string_view const text = View();
    std::string_view const gone = piece(text, start, count);
    if (gone.empty()) {
        return;
    }
    auto const from = static_cast<std::size_t>(gone.data() - text.data());
    setPieces(text.substr(0, from), text.substr(from + gone.size()));
}

void String::DeleteFromRight(int count) {
    int const length = GetLength();
    Delete(count < 0 ? 0 : length - std::min(count, length));
}

void String::Append(String const& text) {
    if (IsEmpty()) {
        SetString(text);
    } else {
        Append(text.getCString());
    }
}

void String::Append(char const* text) {
    // Nothing to append keeps the record, which may be shared.
    if (text != nullptr && *text != '\0') {
        setPieces(View(), text);
    }
}

void String::Append(char c) {
    if (c != '\0') {
        setPieces(View(), {&c, 1});
    }
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

String& String::operator+=(char c) {
    Append(c);
    return *this;
}

String String::AppendNew(String const& text) const {
    String result(*this);
    result.Append(text);
    return result;
}

String String::AppendNew(char const* text) const {
    String result(*this);
    result.Append(text);
    return result;
}

String String::AppendNew(char c) const {
    String result(*this);
    result.Append(c);
    return result;
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
