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
constexpr int largestIndex = 99999999;

struct Placeholder {
    int index = 0;
    std::size_t position = npos;
    std::size_t length = 0;
};

/// The next numbered placeholder of text at or after start, whichever number it has.
inline Placeholder nextNumbered(std::string_view text, std::size_t start) {
    for (std::size_t at = text.find('%', start); at != npos; at = text.find('%', start)) {
        int index = 0;
        for (start = at + 1; start < text.size() && String::IsNumeric(text[start]); ++start) {
            // Stays above the limit once it is there.
            index = index > largestIndex ? index : index * 10 + (text[start] - '0');
        }
        if (start > at + 1 && index <= largestIndex) {
            return {index, at, start - at};
        }
    }
    return {};
}

/// The first placeholder with that number.
Placeholder findNumber(std::string_view text, int number, std::size_t start) {
    for (;;) {
        Placeholder const each = nextNumbered(text, start);
        if (each.position == npos || each.index == number) {
            return each;
        }
        start = each.position + each.length;
    }
}

/// The first of those that have the lowest number there is.
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
    String shown = String::format("%1").argi(1, number);
    if (!withText) {
        return shown;
    }
    return shown + ": " + (number == 0 ? String("OK") : errnoDescription(number));
}

}  // namespace

/// find(from) gives the placeholder to fill at or after from.
template <class Finder>
void String::substitute(PaddedText const& value, Finder find) {
    std::string_view const text = View();
    Placeholder place = find(text, 0);
    if (place.position == npos) {
        return;
    }
    std::size_t done = place.position + place.length;
    std::string_view before = text.substr(0, place.position);
    place = find(text, done);
    if (place.position == npos && value.IsPlain()) {
        // Nearly every call; it needs no collecting.
        setPieces(before, value.text, text.substr(done));
        return;
    }
    TextBuilder result;
    for (;;) {
        result.Append(before);
        result.Append(value.sign);
        result.AppendAligned(value.text, value.width, value.align, value.fill);
        if (place.position == npos) {
            break;
        }
        before = text.substr(done, place.position - done);
        done = place.position + place.length;
        place = find(text, done);
    }
    setPieces(result.View(), text.substr(done));
}

void String::fillIn(int index, PaddedText const& value) {
    // With 0 or below, the lowest number is chosen once, for all its occurrences.
    int const number = index > 0 ? index : findLowest(View(), 0).index;
    substitute(value, [number](std::string_view text, std::size_t from) {
        return findNumber(text, number, from);
    });
}

void String::fillIn(String const& name, PaddedText const& value) {
    // A copy of its own: the name may be this text.
    substitute(value, [wanted = name](std::string_view text, std::size_t from) {
        return findNamed(text, wanted, from);
    });
}

template <class Key>
void String::fillInNumber(Key const& key, NumberText const& number) {
    if (number.IsValid()) {
        fillIn(key, number.Padded());
    } else {
        SetString("*ERR*");
    }
}

template <class Key, class Value>
void String::fillInInteger(Key const& key, Value value, int width, int base, Align align,
                           char fill) {
    fillInNumber(key, NumberText(value, width, base, align, fill));
}

template void String::fillInInteger(int const&, long long, int, int, Align, char);
template void String::fillInInteger(int const&, unsigned long long, int, int, Align, char);
template void String::fillInInteger(String const&, long long, int, int, Align, char);
template void String::fillInInteger(String const&, unsigned long long, int, int, Align, char);

String String::argi(int index, char const* value, int width, Align align, char fill) && {
    fillIn(index, PaddedText{{}, value != nullptr ? value : "", width, align, fill});
    return std::move(*this);
}

String String::argi(int index, double value, int width, char format, int precision, Align align,
                    char fill) const {
    String result(*this);
    result.fillInNumber(index, NumberText(value, width, format, precision, align, fill));
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
    result.fillIn(name, PaddedText{{}, value != nullptr ? value : "", width, align, fill});
    return result;
}

String String::argn(String const& name, double value, int width, char format, int precision,
                    Align align, char fill) const {
    String result(*this);
    result.fillInNumber(name, NumberText(value, width, format, precision, align, fill));
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
    // The checker does not see that the caller started args.
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
    int const length = std::vsnprintf(text, sizeof text, format, args);
    String result;
    if (length < static_cast<int>(sizeof text)) {
        result.SetString(text, std::max(length, 0));
    } else {
        int const room = std::min(length, MaxLength);
        char* const buffer = result.GetBuffer(room);
        std::vsnprintf(buffer, static_cast<std::size_t>(room) + 1, format, again);
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
        // Not std::ceil: it alone would load the mathematical library at each start.
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
