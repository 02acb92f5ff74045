#include <cerrno>
#include <cstdint>

#include "core/text/NumberText.h"
#include "core/text/String.h"
#include "core/text/TextBuilder.h"
#include "core/text/errnoDescription.h"

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
Placeholder nextNumbered(std::string_view text, std::size_t start) {
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

/// The first placeholder with that number; 0 or below: with the lowest number there is.
Placeholder findNumbered(std::string_view text, int index, std::size_t start) {
    Placeholder lowest;
    for (Placeholder each = nextNumbered(text, start); each.position != npos;
         each = nextNumbered(text, each.position + each.length)) {
        if (each.index == index && index > 0) {
            return each;
        }
        if (index <= 0 && (lowest.position == npos || each.index < lowest.index)) {
            lowest = each;
        }
    }
    return lowest;
}

Placeholder findNamed(std::string_view text, String const& name, std::size_t start) {
    for (std::size_t at = text.find("%[", start); at != npos; at = text.find("%[", at + 2)) {
        std::size_t const end = text.find(']', at);
        if (end == npos) {
            return {};
        }
        if (name.CompareIC(String(text.substr(at + 2, end - at - 2))) == 0) {
            return {0, at, end + 1 - at};
        }
    }
    return {};
}

/// find(from) gives the placeholder to fill at or after from.
template <class Find>
String substitute(String const& text, std::string_view whole, PaddedText const& value, Find find) {
    Placeholder place = find(0);
    if (place.position == npos) {
        return text;
    }
    TextBuilder result;
    std::size_t done = 0;
    for (; place.position != npos; place = find(done)) {
        result.Append(whole.substr(done, place.position - done));
        result.Append(value.sign);
        result.AppendAligned(value.text, value.width, value.align, value.fill);
        done = place.position + place.length;
    }
    result.Append(whole.substr(done));
    return result.AsString();
}

/// The number to fill; with 0 or below the lowest is chosen once, for all its occurrences.
String fillIn(String const& text, int index, PaddedText const& value) {
    std::string_view const whole = text.View();
    if (index <= 0) {
        index = findNumbered(whole, index, 0).index;
    }
    return substitute(text, whole, value, [whole, index](std::size_t from) {
        return findNumbered(whole, index, from);
    });
}

String fillIn(String const& text, String const& name, PaddedText const& value) {
    std::string_view const whole = text.View();
    return substitute(text, whole, value,
                      [whole, &name](std::size_t from) { return findNamed(whole, name, from); });
}

template <class Key>
String fillIn(String const& text, Key const& key, NumberText const& number) {
    return number.IsValid() ? fillIn(text, key, number.Padded()) : String("*ERR*");
}

template <class Key>
String fillPointer(String const& text, Key const& key, void const* value) {
    auto const bits = static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(value));
    String const shown = String::format("0x%1").argi(1, bits, 8, 16);
    return fillIn(text, key, PaddedText{{}, shown.View()});
}

template <class Key>
String fillErrno(String const& text, Key const& key, bool withText) {
    int const number = errno;
    String shown = String::format("%1").argi(1, number);
    if (withText) {
        shown += ": ";
        shown += number == 0 ? String("OK") : errnoDescription(number);
    }
    return fillIn(text, key, PaddedText{{}, shown.View()});
}

}  // namespace

String String::argi(int index, String const& value, int width, Align align, char fill) const {
    return fillIn(*this, index, PaddedText{{}, value.View(), width, align, fill});
}

String String::argi(int index, char const* value, int width, Align align, char fill) const {
    return fillIn(*this, index, PaddedText{{}, value != nullptr ? value : "", width, align, fill});
}

String String::argi(int index, long long value, int width, int base, Align align, char fill) const {
    return fillIn(*this, index, NumberText(value, width, base, align, fill));
}

String String::argi(int index, unsigned long long value, int width, int base, Align align,
                    char fill) const {
    return fillIn(*this, index, NumberText(value, width, base, align, fill));
}

String String::argi(int index, double value, int width, char format, int precision, Align align,
                    char fill) const {
    return fillIn(*this, index, NumberText(value, width, format, precision, align, fill));
}

String String::argi(int index, void const* value) const {
    return fillPointer(*this, index, value);
}

String String::argi_choice(int index, bool condition, String const& ifTrue, String const& ifFalse,
                           int width, Align align, char fill) const {
    return argi(index, condition ? ifTrue : ifFalse, width, align, fill);
}

String String::argi_errno(int index, bool withText) const {
    return fillErrno(*this, index, withText);
}

String String::argn(String const& name, String const& value, int width, Align align,
                    char fill) const {
    return fillIn(*this, name, PaddedText{{}, value.View(), width, align, fill});
}

String String::argn(String const& name, char const* value, int width, Align align,
                    char fill) const {
    return fillIn(*this, name, PaddedText{{}, value != nullptr ? value : "", width, align, fill});
}

String String::argn(String const& name, long long value, int width, int base, Align align,
                    char fill) const {
    return fillIn(*this, name, NumberText(value, width, base, align, fill));
}

String String::argn(String const& name, unsigned long long value, int width, int base, Align align,
                    char fill) const {
    return fillIn(*this, name, NumberText(value, width, base, align, fill));
}

String String::argn(String const& name, double value, int width, char format, int precision,
                    Align align, char fill) const {
    return fillIn(*this, name, NumberText(value, width, format, precision, align, fill));
}

String String::argn(String const& name, void const* value) const {
    return fillPointer(*this, name, value);
}

String String::argn_choice(String const& name, bool condition, String const& ifTrue,
                           String const& ifFalse, int width, Align align, char fill) const {
    return argn(name, condition ? ifTrue : ifFalse, width, align, fill);
}

String String::argn_errno(String const& name, bool withText) const {
    return fillErrno(*this, name, withText);
}

int String::findArgPlaceHolderByIndex(int index, int& position, int& length, int start) const {
    Placeholder const found =
        findNumbered(View(), index, static_cast<std::size_t>(start > 0 ? start : 0));
    position = found.position != npos ? static_cast<int>(found.position) : -1;
    length = static_cast<int>(found.length);
    return found.index;
}

}  // namespace core
