#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>

#include "core/text/NumberText.h"
#include "core/text/String.h"
#include "core/text/TextBuilder.h"
#include "core/text/message.h"

namespace core {

namespace {

constexpr std::size_t npos = std::string_view::npos;
constexpr int maxIndex = 99999999;

struct Placeholder {
    int index = 0;
    std::size_t position = npos;
    std::size_t length = 0;
};

/// Returns the first numbered placeholder at or after start.
inline Placeholder nextNumbered(std::string_view text, std::size_t start) {
    for (std::size_t at = text.find('%', start); at != npos; at = text.find('%', start)) {
        int index = 0;
        for (start = at + 1; start < text.size() && String::IsNumeric(text[start]); ++start) {
            // Avoid an overflow: once above the limit, the index stays there.
            index = index > maxIndex ? index : index * 10 + (text[start] - '0');
        }
        if (start > at + 1 && index <= maxIndex) {
            return {index, at, start - at};
        }
    }
    return {};
}

/// Returns the first placeholder at or after start with that number.
Placeholder findNumber(std::string_view text, int number, std::size_t start) {
    for (;;) {
        Placeholder const each = nextNumbered(text, start);
        if (each.position == npos || each.index == number) {
            return each;
        }
        start = each.position + each.length;
    }
}

/// Returns the first placeholder at or after start with the lowest number in text.
Placeholder findLowest(std::string_view text, std::size_t start) {
    Placeholder lowest = nextNumbered(text, start);
    for (Placeholder each = lowest; each.position != npos;
         each = nextNumbered(text, each.position + each.length)) {
        if (each.index < lowest.index) {
            lowest = each;
        }
    }
    return lowest;
}

Placeholder findNamed(std::string_view text, String const& name, std::size_t start) {
    for (std::size_t at = text.find("%[", start); at != npos; at = text.find("%[", start)) {
        std::size_t const end = text.find(']', at);
        if (end == npos) {
            return {};
        }
        if (name.CompareIC(String(text.substr(at + 2, end - at - 2))) == 0) {
            return {0, at, end + 1 - at};
        }
        start = end + 1;
    }
    return {};
}

String pointerText(void const* value) {
    return String::format("0x%1").argi(1, reinterpret_cast<std::uintptr_t>(value), 8, 16);
}

String errnoText(bool withText) {
    int const number = errno;
    String result = String::format("%1").argi(1, number);
    if (!withText) {
        return result;
    }
    return result + ": " + (number == 0 ? String("OK") : errnoDescription(number));
}

}  // namespace

/// find(text, from) returns the placeholder to replace at or after from.
template <class Finder>
void String::Substitute(PaddedText const& value, Finder find) {
    std::string_view const text = View();
    Placeholder found = find(text, 0);
    if (found.position == npos) {
        return;
    }
    std::size_t done = found.position + found.length;
    std::string_view before = text.substr(0, found.position);
    found = find(text, done);
    if (found.position == npos && value.IsPlain()) {
        // Nearly every call ends here, without a TextBuilder.
        Splice(before, value.text, text.substr(done));
        return;
    }
    TextBuilder result;
    for (;;) {
        result.Append(before);
        result.Append(value.sign);
        result.AppendAligned(value.text, value.width, value.align, value.fill);
        if (found.position == npos) {
            break;
        }
        before = text.substr(done, found.position - done);
        done = found.position + found.length;
        found = find(text, done);
    }
    SetParts(result.View(), text.substr(done));
}

void String::FillIn(int index, PaddedText const& value) {
    // An index of 0 or below selects the lowest number once, for all its occurrences.
    int const number = index > 0 ? index : findLowest(View(), 0).index;
    Substitute(value, [number](std::string_view text, std::size_t from) {
        return findNumber(text, number, from);
    });
}

void String::FillIn(String const& name, PaddedText const& value) {
    // Copy the name: it may be this string.
    Substitute(value, [wanted = name](std::string_view text, std::size_t from) {
        return findNamed(text, wanted, from);
    });
}

template <class Key>
void String::FillInNumber(Key const& key, NumberText const& number) {
    if (number.IsValid()) {
        FillIn(key, number.Padded());
    } else {
        SetString("*ERR*");
    }
}

template <class Key, class Value>
void String::FillInInteger(Key const& key, Value value, int width, int base, Align align,
                           char fill) {
    FillInNumber(key, NumberText(value, width, base, align, fill));
}

template void String::FillInInteger(int const&, long long, int, int, Align, char);
template void String::FillInInteger(int const&, unsigned long long, int, int, Align, char);
template void String::FillInInteger(String const&, long long, int, int, Align, char);
template void String::FillInInteger(String const&, unsigned long long, int, int, Align, char);

String String::argi(int index, char const* value, int width, Align align, char fill) && {
    FillIn(index, PaddedText{{}, value != nullptr ? value : "", width, align, fill});
    return std::move(*this);
}

String String::argi(int index, double value, int width, char format, int precision, Align align,
                    char fill) const {
    String result(*this);
    result.FillInNumber(index, NumberText(value, width, format, precision, align, fill));
    return result;
}

String String::argi(int index, void const* value) const {
    return argi(index, pointerText(value));
}

String String::argi_choice(int index, bool condition, String const& ifTrue, String const& ifFalse,
                           int width, Align align, char fill) const {
    return argi(index, condition ? ifTrue : ifFalse, width, align, fill);
}

String String::argi_errno(int index, bool withText) const {
    return argi(index, errnoText(withText));
}

String String::argn(String const& name, String const& value, int width, Align align,
                    char fill) const {
    return argn(name, value.getCString(), width, align, fill);
}

String String::argn(String const& name, char const* value, int width, Align align,
                    char fill) const {
    String result(*this);
    result.FillIn(name, PaddedText{{}, value != nullptr ? value : "", width, align, fill});
    return result;
}

String String::argn(String const& name, double value, int width, char format, int precision,
                    Align align, char fill) const {
    String result(*this);
    result.FillInNumber(name, NumberText(value, width, format, precision, align, fill));
    return result;
}

String String::argn(String const& name, void const* value) const {
    return argn(name, pointerText(value));
}

String String::argn_choice(String const& name, bool condition, String const& ifTrue,
                           String const& ifFalse, int width, Align align, char fill) const {
    return argn(name, condition ? ifTrue : ifFalse, width, align, fill);
}

String String::argn_errno(String const& name, bool withText) const {
    return argn(name, errnoText(withText));
}

int String::findArgPlaceHolderByIndex(int index, int& position, int& length, int start) const {
    auto const from = static_cast<std::size_t>(start > 0 ? start : 0);
    Placeholder const found =
        index > 0 ? findNumber(View(), index, from) : findLowest(View(), from);
    position = found.position != npos ? static_cast<int>(found.position) : -1;
    length = static_cast<int>(found.length);
    return found.index;
}

String String::GetAligned(int width, Align align, char fill) const {
    std::string_view const text = View();
    if (width <= static_cast<int>(text.size())) {
        return *this;
    }
    TextBuilder result;
    result.AppendAligned(text, width, align, fill);
    return result.AsString();
}

String String::sprintf(char const* format, ...) {
    va_list args;
    va_start(args, format);
    String result = vsprintf(format, args);
    va_end(args);
    return result;
}

String String::vsprintf(char const* format, va_list args) {
    if (format == nullptr) {
        return {};
    }
    char text[512];
    va_list again;
    va_copy(again, args);
    // clang-analyzer does not see that the caller started args.
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
    int const length = std::vsnprintf(text, sizeof text, format, args);
    String result;
    if (length < static_cast<int>(sizeof text)) {
        result.SetString(text, std::max(length, 0));
    } else {
        int const kept = std::min(length, MaxLength);
        char* const buffer = result.GetBuffer(kept);
        std::vsnprintf(buffer, static_cast<std::size_t>(kept) + 1, format, again);
    }
    va_end(again);
    return result;
}

String String::FormatByteSize(long long bytes, bool roundUp) {
    struct Unit {
        double bytes;
        char const* name;
    };
    static constexpr Unit units[] = {{1099511627776.0, "TB"},
                                     {1073741824.0, "GB"},
                                     {1048576.0, "MB"},
                                     {1024.0, "KB"},
                                     {1.0, "B"}};

    auto const value = static_cast<double>(bytes);
    auto const* const unit = std::find_if(std::begin(units), std::end(units) - 1,
                                          [&](Unit each) { return value > 1.5 * each.bytes; });
    double const scaled = value / unit->bytes;
    char text[64];
    if (roundUp) {
        // Do not use std::ceil: it alone would make every start load the mathematical library.
        auto const whole = static_cast<long long>(scaled);
        int const rest = static_cast<double>(whole) < scaled ? 1 : 0;
        std::snprintf(text, sizeof text, "%lli %s", whole + rest, unit->name);
    } else {
        std::snprintf(text, sizeof text, "%0.1f %s", scaled, unit->name);
    }
    return text;
}

String FormatByteSize(long long bytes, bool roundUp) {
    return String::FormatByteSize(bytes, roundUp);
}

}  // namespace core
