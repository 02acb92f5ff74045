#include "core/text/String.h"

#include <algorithm>
#include <functional>

#include "core/text/Buffer.h"
#include "core/text/StringPool.h"
#include "core/text/TextBuilder.h"

namespace core {

namespace {

/// Whether text is in the buffer.
bool isInBuffer(String::StringData const& data, std::string_view text) {
    std::less_equal<> const notAfter;
    return notAfter(data.buffer, text.data()) && notAfter(text.data(), data.buffer + data.capacity);
}

}  // namespace

void String::SetString(char const* text, int length) {
    if (text == nullptr || length == 0) {
        Clear();
        return;
    }
    if (length < 0) {
        SetParts(text);
        return;
    }
    auto const* const end =
        static_cast<char const*>(std::memchr(text, '\0', static_cast<std::size_t>(length)));
    SetParts({text, end != nullptr ? static_cast<std::size_t>(end - text)
                                   : static_cast<std::size_t>(length)});
}

void String::SetString(char c, int count) {
    TextBuilder text;
    text.Append(c, count);
    *this = text.AsString();
}

void String::SetBuffer(void const* data, int size) {
    SetString(static_cast<char const*>(data), std::max(size, 0));
}

void String::SetBuffer(Buffer const& bytes) {
    SetBuffer(bytes.GetData(), bytes.GetSize());
}

String String::OfChar(char c, int count) {
    String result;
    result.SetString(c, count);
    return result;
}

void String::CopyOnWrite(int newLength) {
    if (newLength < 0 && IsUnique()) {
        return;
    }
    std::string_view const before = View();
    auto const length =
        newLength < 0 ? before.size() : static_cast<std::size_t>(std::min(newLength, MaxLength));
    if (length == 0) {
        Clear();
    } else if (!IsUnique() || length != before.size()) {
        std::size_t const kept = std::min(length, before.size());
        SetParts(before.substr(0, kept), {}, {}, length - kept);
        std::memset(data_->buffer + kept, 0, length + 1 - kept);
    }
}

char* String::GetBuffer(int length) {
    if (length > MaxLength) {
        return nullptr;
    }
    CopyOnWrite(length);
    if (data_ == nullptr) {
        return nullptr;
    }
    data_->length = StringData::unknownLength;
    return data_->buffer;
}

void String::freeBlock(StringData* data) {
    StringPool::Instance().Release(data);
}

void String::SetParts(std::string_view first, std::string_view second, std::string_view third,
                      std::size_t spare) {
    first = first.substr(0, MaxLength);
    second = second.substr(0, MaxLength - first.size());
    third = third.substr(0, MaxLength - first.size() - second.size());
    std::size_t const length = first.size() + second.size() + third.size();
    std::size_t const capacity = std::min<std::size_t>(length + spare, MaxLength);
    if (capacity == 0) {
        Clear();
        return;
    }

    // Keep the record if possible: to take another one needs the pool's lock.
    bool const keepsRecord = IsUnique();
    StringData* const data = keepsRecord ? data_ : StringPool::Instance().Take(capacity);
    char* const buffer = keepsRecord ? new char[capacity + 1] : data->buffer;
    first.copy(buffer, first.size());
    second.copy(buffer + first.size(), second.size());
    third.copy(buffer + first.size() + second.size(), third.size());
    buffer[length] = '\0';
    // The parts may be in the old buffer: release it last.
    if (keepsRecord) {
        StringPool::SetBuffer(*data, buffer, capacity);
    } else {
        deleteStringData(std::exchange(data_, data));
    }
    data->length = static_cast<int>(length);
}

void String::Splice(std::string_view head, std::string_view text, std::string_view tail) {
    std::size_t const length = head.size() + text.size() + tail.size();
    bool const fits = IsUnique() && length <= static_cast<std::size_t>(data_->capacity);
    if (length == 0 || !fits || isInBuffer(*data_, text)) {
        // Reserve as much again for more text: repeated appending takes amortised constant time.
        SetParts(head, text, tail, text.empty() ? 0 : length);
        return;
    }
    char* const target = data_->buffer + head.size();
    std::char_traits<char>::move(target + text.size(), tail.data(), tail.size());
    text.copy(target, text.size());
    data_->buffer[length] = '\0';
    data_->length = static_cast<int>(length);
}

void String::AppendPart(std::string_view part) {
    // Keep a shared record if nothing is appended.
    if (!part.empty()) {
        Splice(View(), part, {});
    }
}

String String::Join(std::string_view first, std::string_view second, std::string_view third) const {
    std::string_view const text = View();
    if (text.size() == first.size() + second.size() + third.size() && text.starts_with(first) &&
        text.substr(first.size()).starts_with(second) && text.ends_with(third)) {
        return *this;
    }
    String result;
    result.SetParts(first, second, third);
    return result;
}

}  // namespace core
