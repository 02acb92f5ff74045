#include "core/text/String.h"

#include <algorithm>
#include <memory>

#include "core/text/Buffer.h"
#include "core/text/StringPool.h"
#include "core/text/TextBuilder.h"

namespace core {

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
    bool const shared = data_ != nullptr && data_->count > 1;
    if (newLength < 0 && !shared) {
        return;
    }
    std::string_view const before = View();
    auto const length =
        newLength < 0 ? before.size() : static_cast<std::size_t>(std::min(newLength, MaxLength));
    if (length == 0) {
        Clear();
        return;
    }
    if (!shared && data_ != nullptr && length == before.size()) {
        return;
    }

    std::unique_ptr<char[]> resized(new char[length + 1]);
    std::size_t const kept = std::min(length, before.size());
    std::memcpy(resized.get(), before.data(), kept);
    std::memset(resized.get() + kept, 0, length + 1 - kept);
    Adopt(resized.release());
}

char* String::GetBuffer(int length) {
    if (length > MaxLength) {
        return nullptr;
    }
    CopyOnWrite(length);
    return data_ != nullptr ? data_->buffer : nullptr;
}

void String::freeBlock(StringData* data) {
    StringPool::Instance().Release(data);
}

void String::SetParts(std::string_view first, std::string_view second, std::string_view third) {
    std::size_t length = first.size() + second.size() + third.size();
    if (length == 0) {
        Clear();
        return;
    }
    if (length > MaxLength) {
        first = first.substr(0, MaxLength);
        second = second.substr(0, MaxLength - first.size());
        third = third.substr(0, MaxLength - first.size() - second.size());
        length = MaxLength;
    }
    char* const text = new char[length + 1];
    first.copy(text, first.size());
    second.copy(text + first.size(), second.size());
    third.copy(text + first.size() + second.size(), third.size());
    text[length] = '\0';
    Adopt(text);
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

void String::Adopt(char* buffer) {
    if (data_ != nullptr && data_->count == 1) {
        delete[] std::exchange(data_->buffer, buffer);
        return;
    }
    deleteStringData(std::exchange(data_, nullptr));
    data_ = StringPool::Instance().Take();
    data_->buffer = buffer;
    data_->count = 1;
}

}  // namespace core
