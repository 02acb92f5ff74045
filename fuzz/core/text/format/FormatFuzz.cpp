#include "core/text/String.h"
#include "fuzz/Input.h"
#include "fuzz/require.h"

namespace {

using core::String;

/// Returns text with the numbered placeholders replaced, by a simple algorithm.
std::string filled(std::string const& text, int wanted, std::string const& value) {
    std::string result;
    for (std::size_t i = 0; i < text.size();) {
        std::size_t end = i + 1;
        long long index = 0;
        for (; text[i] == '%' && end < text.size() && String::IsNumeric(text[end]); ++end) {
            index = std::min(index * 10 + (text[end] - '0'), 100'000'000LL);
        }
        result += end > i + 1 && index == wanted ? value : text.substr(i, end - i);
        i = end;
    }
    return result;
}

/// The same for a named placeholder.
std::string filled(std::string const& text, String const& wanted, std::string const& value) {
    std::string result;
    std::size_t done = 0;
    for (std::size_t at = 0; (at = text.find("%[", done)) != std::string::npos;) {
        std::size_t const end = text.find(']', at);
        if (end == std::string::npos) {
            break;
        }
        result += text.substr(done, at - done);
        done = end + 1;
        bool const found = wanted.CompareIC(text.substr(at + 2, end - at - 2).c_str()) == 0;
        result += found ? value : text.substr(at, done - at);
    }
    return result + text.substr(done);
}

/// One call of a chain, from the input.
struct Call {
    unsigned kind;
    int index;
    int width;
    String::Align align;
    char fill;
    std::string value;

    explicit Call(Input& input)
        : kind(input.Byte()),
          index(input.Byte() % 16 - 2),
          width(input.Byte() % 32 - 4),
          align(static_cast<String::Align>(input.Byte() % 5)),
          fill(static_cast<char>(input.Byte())),
          value(input.Line()) {}
};

/// Requires that a string is inserted as it is, or padded on the right with spaces, by every
/// overload.
void requireString(String const& value, int width) {
    char const* const plain = value.getCString();
    String const numbered("%1");
    String const named("%[n]");
    for (String const& result :
         {numbered.argi(1, value), numbered.argi(1, plain), String("%1").argi(1, value),
          String("%1").argi(1, plain), numbered.argi_choice(1, true, value, "x"),
          named.argn("n", value), named.argn("n", plain),
          named.argn_choice("n", false, "x", value)}) {
        require(result == value);
    }
    String const padded = value.GetAligned(width, String::AlignLeft, ' ');
    for (String const& result :
         {numbered.argi(1, value, width), numbered.argi(1, plain, width),
          String("%1").argi(1, value, width), String("%1").argi(1, plain, width),
          numbered.argi_choice(1, true, value, "x", width), named.argn("n", value, width),
          named.argn("n", plain, width), named.argn_choice("n", false, "x", value, width)}) {
        require(result == padded);
    }
}

/// Requires that numbered and named placeholders format a number alike, with equal defaults.
template <class Number>
void requireSame(Number number, int width) {
    String const numbered("%1");
    String const named("%[n]");
    String const padded = numbered.argi(1, number, width);
    require(named.argn("n", number, width) == padded);
    require(String("%1").argi(1, number, width) == padded);
    require(numbered.argi(1, number).GetAligned(width, String::AlignRight) == padded);
    require(named.argn("n", number) == numbered.argi(1, number));
}

String withString(String const& text, Call const& call) {
    String const value(call.value.c_str());
    requireString(value, call.width);
    requireString("", call.width);
    String const result = text.argi(call.index, value, call.width, call.align, call.fill);
    String const padded = value.GetAligned(call.width, call.align, call.fill);
    require(result == text.argi(call.index, padded));
    require(call.index < 1 ||
            filled(text.getCString(), call.index, padded.getCString()) == result.getCString());
    return result;
}

/// Replaces the first named placeholder.
String withName(String const& text, Call const& call) {
    String const name = text.RightOf("%[").LeftOf(']');
    String const value(call.value.c_str());
    String const result = text.argn(name, value, call.width, call.align, call.fill);
    String const padded = value.GetAligned(call.width, call.align, call.fill);
    require(filled(text.getCString(), name, padded.getCString()) == result.getCString());
    return result;
}

String withNumber(String const& text, Call const& call) {
    String const value(call.value.c_str());
    requireSame(value.ToDecimal64(), call.width);
    requireSame(value.ToHex64(), call.width);
    requireSame(value.ToFloat(), call.width);
    if (call.kind / 4 % 2 == 0) {
        char const format = value.FirstChar();
        return text.argi(call.index, value.ToFloat(1e300), call.width, format, call.width,
                         call.align, call.fill);
    }
    int const base = call.kind / 8 % 2 == 0 ? 10 : static_cast<int>(call.kind / 16) * 4;
    long long const number = value.ToDecimal64();
    String const result = text.argi(call.index, number, call.width, base, call.align, call.fill);
    require(base != 10 || call.width > 0 ||
            result == text.argi(call.index, std::to_string(number).c_str()));
    return result;
}

void requirePlaceholder(String const& text, int index) {
    int position = 0;
    int length = 0;
    text.findArgPlaceHolderByIndex(index, position, length);
    if (position < 0) {
        require(position == -1 && length == 0);
        return;
    }
    require(text[position] == '%' && length > 1 && position + length <= text.GetLength());
}

}  // namespace

/// Input: a line with a template, then the calls of a chain.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Input input(data, size);
    String text(input.Line().c_str());
    // Values that contain placeholders let the string grow without limit.
    while (!input.IsEmpty() && text.GetLength() < 10'000) {
        Call const call(input);
        requirePlaceholder(text, call.index);
        if (call.kind % 4 == 0) {
            text = withString(text, call);
        } else if (call.kind % 4 == 1) {
            text = withNumber(text, call);
        } else if (call.kind % 4 == 2) {
            text = withName(text, call);
        } else {
            text = text.argn(call.value.c_str(), call.index, call.width, 16, call.align);
        }
    }
    return 0;
}
