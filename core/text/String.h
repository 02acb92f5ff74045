#pragma once

#include <climits>
#include <compare>
#include <concepts>
#include <cstdarg>
#include <cstring>
#include <string_view>
#include <type_traits>
#include <utility>

#include "sys/platform/PathStyle.h"

namespace core {

class Buffer;
class StringArray;
template <class Word>
class MChar;
using MChar4 = MChar<unsigned int>;
using MChar8 = MChar<unsigned long long>;

/// What is written as a whole number: the integers, and the enumerations that count as such.
template <class Value>
concept Integer = std::integral<Value> ||
    (std::is_enum_v<Value>&& std::is_convertible_v<Value, long long>);

struct PaddedText;
class NumberText;

/// The one text type: 8-bit characters without NUL, shared between copies until one of them
/// changes. Copying costs a counter, an empty text costs nothing.
///
/// - Positions start at 0; "not found" is -1. No operation reports an error or reads outside the
///   text: positions and counts are clipped. A negative start counts as 0, a start past the end
///   leaves nothing, a count past the end is cut, a negative count means "all that is there".
/// - An operation changes this text only where it says so; all others return a new text. If that
///   equals this text, it shares this text's record.
/// - Letters are the ASCII letters; a name that ends in IC ignores their case. All other bytes are
///   taken as they are. A null pointer is an empty text everywhere.
/// - Threads: the count of holders is not atomic. A text that goes to another thread must be a
///   copy of its own there: see Unique.
class String {
public:
    /// How a text is placed in a wider field. A number takes AlignDefault as AlignRight, a text
    /// as AlignLeft; any value not named here is AlignLeft.
    enum class Align { Default = 0, Left = 1, Right = 2, Center = 3 };
    static constexpr Align AlignDefault = Align::Default;
    static constexpr Align AlignLeft = Align::Left;
    static constexpr Align AlignRight = Align::Right;
    static constexpr Align AlignCenter = Align::Center;

    /// The longest text, in characters. Whatever would get longer is cut here.
    static constexpr int MaxLength = 0x4000000;
    /// The widest field of a padded value, in characters; a larger width counts as this one.
    static constexpr int MaxWidth = 0xFFFF;
    /// The most digits behind the point: more of them no double has.
    static constexpr int MaxPrecision = 1074;

    /// The shared record. Records come from StringPool; a free one is linked to the next.
    struct StringData {
        int count;
        union {
            char* buffer;
            StringData* nextFree;
        };
    };

    String() = default;
    /// The text up to its NUL, or its first length characters; see SetString.
    String(char const* text, int length = -1) { SetString(text, length); }
    /// The same for text that ends otherwise than by a NUL.
    explicit String(std::string_view text) { setPieces(text.substr(0, text.find('\0'))); }
    String(String const& other) : data_(other.data_) { addHolder(); }
    String(String&& other) noexcept : data_(std::exchange(other.data_, nullptr)) {}
    ~String() { deleteStringData(data_); }

    String& operator=(String const& other) {
        String copy(other);
        std::swap(data_, copy.data_);
        return *this;
    }
    String& operator=(String&& other) noexcept {
        std::swap(data_, other.data_);
        return *this;
    }
    String& operator=(char const* text) {
        SetString(text);
        return *this;
    }

    // Setting the whole text; each changes this text.

    /// Copies at most length characters, up to the NUL; length -1 means up to the NUL.
    void SetString(char const* text, int length = -1);
    /// count times c; empty when count is below 1 or c is NUL.
    void SetString(char c, int count);
    /// Shares the other text's record.
    void SetString(String const& other) { *this = other; }
    /// Each code unit cut to its low 8 bits, up to the first unit that gives a NUL. length is in
    /// units, -1 means up to the NUL.
    void SetString(unsigned short const* units, int length = -1);
    void SetString(unsigned int const* units, int length = -1);
    /// The bytes up to the first NUL or up to size.
    void SetBuffer(void const* data, int size);
    void SetBuffer(Buffer const& bytes);
    void Clear() { deleteStringData(std::exchange(data_, nullptr)); }

    [[nodiscard]] static String OfChar(char c, int count);

    // Storage

    /// The gate of every change: makes the record this text's own, with room for newLength
    /// characters (at most MaxLength; negative: as long as the text is). A longer room is filled
    /// with NUL, a shorter one cuts the text, 0 empties it.
    void CopyOnWrite(int newLength);
    void SetLength(int length) { CopyOnWrite(length); }
    /// Makes the record this text's own, with room for length characters and the NUL behind them,
    /// and returns that room, which stays owned by the text. Null when there is no room: length
    /// is 0 or above MaxLength, or it is negative and the text is empty.
    char* GetBuffer(int length = -1);
    /// Unshares the buffer. Call it on a copy before passing that copy to another thread.
    void Unique() { CopyOnWrite(-1); }
    /// True when both share one record or both are empty.
    bool SameRef(String const& other) const { return data_ == other.data_; }

    /// The text with its NUL; never null, valid until this text changes.
    char const* getCString() const { return data_ != nullptr ? data_->buffer : ""; }
    /// The text without its NUL, valid until this text changes.
    std::string_view View() const { return getCString(); }
    /// Counted anew at each call.
    int GetLength() const { return data_ != nullptr ? static_cast<int>(View().size()) : 0; }
    bool IsEmpty() const { return *getCString() == '\0'; }

    // Comparison: -1, 0 or 1, byte by byte, bytes as signed values: 0x80 sorts before "A".

    int Compare(String const& other) const;
    int Compare(char const* other) const;
    /// Both sides in upper case.
    int CompareIC(String const& other) const;
    bool operator==(String const& other) const { return Compare(other) == 0; }
    bool operator==(char const* other) const { return Compare(other) == 0; }
    std::strong_ordering operator<=>(String const& other) const { return Compare(other) <=> 0; }
    std::strong_ordering operator<=>(char const* other) const { return Compare(other) <=> 0; }

    bool StartsWith(String const& prefix) const;
    bool StartsWithIC(String const& prefix) const;
    bool EndsWith(String const& suffix) const;
    bool EndsWithIC(String const& suffix) const;

    // Search

    /// The first occurrence at or after start. An empty pattern is found at the end of the text,
    /// NUL never.
    int Find(char c, int start = 0) const;
    int Find(String const& pattern, int start = 0) const;
    int FindIC(char c, int start = 0) const;
    int FindIC(String const& pattern, int start = 0) const;
    /// The last occurrence that begins at or before start; a negative start finds nothing, so
    /// that a search can go on before its last result. An empty pattern is found at start, or at
    /// the end of the text when that comes first.
    int RFind(char c, int start = INT_MAX) const;
    int RFind(String const& pattern, int start = INT_MAX) const;
    int RFindIC(char c, int start = INT_MAX) const;
    int RFindIC(String const& pattern, int start = INT_MAX) const;
    int CountChars(char c) const;

    // Delimiter sets: every character of set is a delimiter.

    bool IsDelimiter(String const& set, int index) const;
    int FindDelimiter(String const& set, int start = 0) const;
    int FindNotDelimiter(String const& set, int start = 0) const;
    int LastDelimiter(String const& set) const;
    int LastNotDelimiter(String const& set) const;
    bool HasLeadingDelimiter(String const& set) const { return IsDelimiter(set, 0); }
    bool HasTrailingDelimiter(String const& set) const;
    /// The text, with delimiter appended when it does not end with one of set.
    [[nodiscard]] String ForceTrailingDelimiter(String const& set, char delimiter) const;

    // Pieces

    [[nodiscard]] String Copy(int start, int count = -1) const;
    /// Two pieces, joined.
    [[nodiscard]] String Copy(int start, int count, int secondStart, int secondCount) const;
    /// From one position to another; the character at to belongs to it when inclusive is set. A
    /// to before from gives the empty text.
    [[nodiscard]] String CopyRange(int from, int to, bool inclusive = false) const;
    [[nodiscard]] String Left(int count) const { return Copy(0, count); }
    [[nodiscard]] String Right(int count) const;
    /// The text before the first occurrence; empty when there is none.
    [[nodiscard]] String LeftOf(char c) const;
    [[nodiscard]] String LeftOf(String const& pattern) const;
    [[nodiscard]] String LeftOfIC(char c) const;
    [[nodiscard]] String LeftOfIC(String const& pattern) const;
    /// The text after the first occurrence; empty when there is none.
    [[nodiscard]] String RightOf(char c) const;
    [[nodiscard]] String RightOf(String const& pattern) const;
    [[nodiscard]] String RightOfIC(char c) const;
    [[nodiscard]] String RightOfIC(String const& pattern) const;
    /// The text after the last occurrence; empty when there is none.
    [[nodiscard]] String RightBy(char c) const;
    [[nodiscard]] String RightBy(String const& pattern) const;
    [[nodiscard]] String RightByIC(char c) const;
    [[nodiscard]] String RightByIC(String const& pattern) const;

    /// The character at index; NUL outside the text.
    char GetChar(int index) const;
    char operator[](int index) const { return GetChar(index); }
    char FirstChar() const { return *getCString(); }
    char LastChar() const;

    // Editing; each changes this text, except AppendNew and operator+.

    /// Outside the text nothing changes; NUL cuts the text at index.
    void SetChar(int index, char c);
    /// Puts text before the character at position.
    void Insert(String const& text, int position);
    void Delete(int start, int count = -1);
    void DeleteFromLeft(int count) { Delete(0, count); }
    void DeleteFromRight(int count);
    void Append(String const& text);
    void Append(char const* text);
    /// Appending NUL changes nothing.
    void Append(char c);
    /// The bytes up to the first NUL.
    void Append(Buffer const& bytes);
    String& operator+=(String const& text);
    String& operator+=(char const* text);
    String& operator+=(char c);
    [[nodiscard]] String AppendNew(String const& text) const;
    [[nodiscard]] String AppendNew(char const* text) const;
    [[nodiscard]] String AppendNew(char c) const;
    [[nodiscard]] String AppendNew(Buffer const& bytes) const;
    [[nodiscard]] String operator+(String const& text) const { return AppendNew(text); }
    [[nodiscard]] String operator+(char const* text) const { return AppendNew(text); }
    [[nodiscard]] String operator+(char c) const { return AppendNew(c); }

    // Case, classes, trimming

    [[nodiscard]] String UpperCase() const;
    [[nodiscard]] String LowerCase() const;
    /// The first letter of each word large, the others small; white space separates words.
    [[nodiscard]] String CapitalCase() const;
    static char ToUpper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; }
    static char ToLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

    /// Space, tab, CR, LF, and NUL: a scan that runs over white space ends there by itself.
    static bool IsWhiteSpace(char c);
    /// One of ".,:;!?", and NUL like IsWhiteSpace.
    static bool IsPuntuaction(char c);
    static bool IsNewLine(char c) { return c == '\r' || c == '\n'; }
    static bool IsNumeric(char c) { return c >= '0' && c <= '9'; }
    static bool IsAlphabetic(char c) { return ToUpper(c) >= 'A' && ToUpper(c) <= 'Z'; }
    static bool IsAlphanumeric(char c) { return IsNumeric(c) || IsAlphabetic(c); }

    [[nodiscard]] String Trim() const;
    [[nodiscard]] String TrimLeft() const;
    [[nodiscard]] String TrimRight() const;

    // Replacing

    /// Every occurrence of find, from left to right, replaced by with; what was put in is not
    /// searched again. An empty find stands at the end of a text and nowhere in an empty one:
    /// the result is the text and with behind it.
    [[nodiscard]] String Replace(String const& find, String const& with) const;
    [[nodiscard]] String ReplaceIC(String const& find, String const& with) const;
    /// Every line break (CR LF, CR or LF, each pair once) replaced by with.
    [[nodiscard]] String ReplaceNewLine(String const& with) const;
    /// Every CR and every LF as the character c; NUL leaves them out.
    [[nodiscard]] String FilterNewLineChar(char c = ' ') const;

    // Splitting and tokens

    /// Appends the pieces between the delimiters to out, empty ones included, but not an empty
    /// one behind the last delimiter. Returns the number of entries that out now has.
    int Split(StringArray& out, String const& delimiters) const;
    int Split(StringArray& out, char delimiter) const;
    /// Removes the text up to the first delimiter, and the delimiter, from this text and returns
    /// it without the delimiter; the whole text when there is no delimiter.
    String ExtractNextToken(String const& delimiters);
    String ExtractNextToken(char delimiter);
    /// The same, but a delimiter between two equal characters of quotes is part of the token. A
    /// quote that is never closed reaches to the end. The token keeps its quotes.
    String ExtractNextToken(String const& delimiters, String const& quotes);
    /// The same from the other end: the text after the last delimiter.
    String ExtractLastToken(String const& delimiters);
    String ExtractLastToken(char delimiter);

    /// The text between two quote characters; quotes within stay as they are.
    [[nodiscard]] String Quote(char quote = '"') const;
    /// The text without the quotes around it; unchanged when it does not begin and end with one.
    [[nodiscard]] String Unquote(char quote = '"') const;
    /// The value of the first property of that name (case ignored) at or after start, in a text
    /// such as: type=flat; size = "3 4". A property begins after white space, a comma or a
    /// semicolon and ends before the next one, unless its value is in quotes (single or double):
    /// these are removed, and another property may follow at once. Empty when there is none.
    [[nodiscard]] String GetProperty(String const& name, int start = 0) const;

    // Paths, by default in the style of the platform

    static String PathDelimiter(sys::PathStyle const& style = sys::pathStyle());
    /// The set of all characters that the style accepts between two names.
    static String PathDelimiters(sys::PathStyle const& style = sys::pathStyle());
    /// Every slash and every backslash, of whichever style, as the delimiter of style.
    [[nodiscard]] String EnsurePlatformPathDelimiters(
        sys::PathStyle const& style = sys::pathStyle()) const;
    /// What follows the last delimiter.
    [[nodiscard]] String GetFileName(sys::PathStyle const& style = sys::pathStyle()) const;
    /// What stands before the last delimiter; a root keeps its delimiter ("/a" gives "/").
    [[nodiscard]] String GetFilePath(sys::PathStyle const& style = sys::pathStyle()) const;
    /// The file name from its last point on (".zip"). A point in front is part of the name.
    [[nodiscard]] String GetFileExt(sys::PathStyle const& style = sys::pathStyle()) const;
    [[nodiscard]] String GetFileNameWithoutExt(
        sys::PathStyle const& style = sys::pathStyle()) const;
    /// The path with another extension, given with or without its point; an empty one takes the
    /// extension off.
    [[nodiscard]] String ReplaceFileExt(String const& ext,
                                        sys::PathStyle const& style = sys::pathStyle()) const;
    /// Appends part with exactly one delimiter between; changes this text. When either side is
    /// empty no delimiter is added.
    void AppendPath(String const& part, sys::PathStyle const& style = sys::pathStyle());
    [[nodiscard]] String AppendNewPath(String const& part,
                                       sys::PathStyle const& style = sys::pathStyle()) const;
    bool IsPathDelimiter(int index, sys::PathStyle const& style = sys::pathStyle()) const;
    int FindPathDelimiter(int start = 0, sys::PathStyle const& style = sys::pathStyle()) const;
    int LastPathDelimiter(sys::PathStyle const& style = sys::pathStyle()) const;
    bool HasLeadingPathDelimiter(sys::PathStyle const& style = sys::pathStyle()) const;
    bool HasTrailingPathDelimiter(sys::PathStyle const& style = sys::pathStyle()) const;
    [[nodiscard]] String ForceLeadingPathDelimiter(
        sys::PathStyle const& style = sys::pathStyle()) const;
    [[nodiscard]] String ForceTrailingPathDelimiter(
        sys::PathStyle const& style = sys::pathStyle()) const;
    /// Without any of the delimiters in front (behind), however many there are.
    [[nodiscard]] String ForceNoLeadingPathDelimiter(
        sys::PathStyle const& style = sys::pathStyle()) const;
    [[nodiscard]] String ForceNoTrailingPathDelimiter(
        sys::PathStyle const& style = sys::pathStyle()) const;
    /// Each run of delimiters as its first one. The two in front of a network path stay where the
    /// style has drives.
    [[nodiscard]] String RemoveDuplicatedPathDelimiters(
        sys::PathStyle const& style = sys::pathStyle()) const;

    // Formatting. A template holds numbered placeholders (%1, %12: a percent sign and the longest
    // run of digits, up to 99999999) and named ones (%[name], case ignored); a percent sign before
    // anything else is text, and "%%1" is a percent sign and the placeholder 1. Each call of a
    // chain replaces every occurrence of one placeholder:
    //     String::format("%1 of %2").argi(1, done).argi(2, FormatByteSize(total, false))
    // A number of 0 or below means the lowest one in the text. What a call puts in is not searched
    // by that call, but by later ones. A placeholder that is not there is ignored, one that nobody
    // fills stays. A value longer than width is not cut; a fill below 32 means space.

    /// Starts a chain: the text itself.
    [[nodiscard]] static String format(String const& text) { return text; }
    [[nodiscard]] static String format(char const* text) { return text; }

    // A call on a temporary text, as each but the first of a chain is, works in its record.

    [[nodiscard]] String argi(int index, String const& value, int width = 0,
                              Align align = AlignDefault, char fill = '\0') && {
        return std::move(*this).argi(index, value.getCString(), width, align, fill);
    }
    [[nodiscard]] String argi(int index, String const& value, int width = 0,
                              Align align = AlignDefault, char fill = '\0') const& {
        return String(*this).argi(index, value, width, align, fill);
    }
    [[nodiscard]] String argi(int index, char const* value, int width = 0,
                              Align align = AlignDefault, char fill = '\0') &&;
    [[nodiscard]] String argi(int index, char const* value, int width = 0,
                              Align align = AlignDefault, char fill = '\0') const& {
        return String(*this).argi(index, value, width, align, fill);
    }
    /// A base outside 2..36 makes the whole result "*ERR*", so that the mistake shows. Bases other
    /// than 10 write the 64 bits of a negative number and pad on the left with "0" by themselves.
    /// A fill other than space stands between the sign and the digits, and the sign comes on top
    /// of width: -5 in 3 with "0" is "-005".
    template <Integer Value>
    [[nodiscard]] String argi(int index, Value value, int width = 0, int base = 10,
                              Align align = AlignDefault, char fill = '\0') && {
        fillInInteger(index, widened(value), width, base, align, fill);
        return std::move(*this);
    }
    template <Integer Value>
    [[nodiscard]] String argi(int index, Value value, int width = 0, int base = 10,
                              Align align = AlignDefault, char fill = '\0') const& {
        return String(*this).argi(index, value, width, base, align, fill);
    }
    /// Written as printf writes it; format is one of "aAeEfFgG" (anything else counts as "g"), a
    /// negative precision means printf's own.
    [[nodiscard]] String argi(int index, double value, int width = 0, char format = 'g',
                              int precision = -1, Align align = AlignDefault,
                              char fill = '\0') const;
    /// "0x" and at least eight hexadecimal digits.
    [[nodiscard]] String argi(int index, void const* value) const;
    [[nodiscard]] String argi_choice(int index, bool condition, String const& ifTrue,
                                     String const& ifFalse, int width = 0,
                                     Align align = AlignDefault, char fill = '\0') const;
    /// This thread's errno; with text followed by errnoDescription, as "2: No such file or
    /// directory", or "0: OK".
    [[nodiscard]] String argi_errno(int index, bool withText) const;

    // The same for named placeholders.
    [[nodiscard]] String argn(String const& name, String const& value, int width = 0,
                              Align align = AlignDefault, char fill = '\0') const;
    [[nodiscard]] String argn(String const& name, char const* value, int width = 0,
                              Align align = AlignDefault, char fill = '\0') const;
    template <Integer Value>
    [[nodiscard]] String argn(String const& name, Value value, int width = 0, int base = 10,
                              Align align = AlignDefault, char fill = '\0') const {
        String result(*this);
        result.fillInInteger(name, widened(value), width, base, align, fill);
        return result;
    }
    [[nodiscard]] String argn(String const& name, double value, int width = 0, char format = 'g',
                              int precision = -1, Align align = AlignDefault,
                              char fill = '\0') const;
    [[nodiscard]] String argn(String const& name, void const* value) const;
    [[nodiscard]] String argn_choice(String const& name, bool condition, String const& ifTrue,
                                     String const& ifFalse, int width = 0,
                                     Align align = AlignDefault, char fill = '\0') const;
    [[nodiscard]] String argn_errno(String const& name, bool withText) const;

    /// Looks for the numbered placeholder (0 or below: the lowest one) at or after start. Returns
    /// its number, and its position and length with the percent sign; 0, -1 and 0 when none.
    int findArgPlaceHolderByIndex(int index, int& position, int& length, int start = 0) const;

    /// The text filled up to width characters. Centred, the larger half comes in front.
    [[nodiscard]] String GetAligned(int width, Align align, char fill = '\0') const;

    /// The C library's formatted printing. A template that it refuses gives the empty text.
    [[gnu::format(printf, 1, 2)]] static String sprintf(char const* format, ...);
    static String vsprintf(char const* format, va_list args);

    /// A number of bytes for people, "1.9 MB": in B, KB, MB, GB or TB, steps of 1024, each unit
    /// taken above one and a half of it; one decimal, or whole and rounded up. Calculated as a
    /// double, to which bytes is rounded first.
    static String FormatByteSize(long long bytes, bool roundUp);

    /// The tag's characters up to its first NUL; when safe is set, its SafeDump.
    static String FromMultiChar4(MChar4 const& tag, bool safe);
    static String FromMultiChar8(MChar8 const& tag, bool safe);

    // Numbers. The forms with errorPosition store -1 there when the whole text was read, else the
    // position of the first character that was not, and return what was read up to it; when
    // nothing could be read they leave it alone and return defaultValue. It may be null. White
    // space in front is skipped. An integer past the type's range counts as read and is clamped to
    // the range's end; the tests of the whole text refuse it.

    /// An optional sign and decimal digits.
    int ToDecimal32(int* errorPosition, int defaultValue) const;
    int ToDecimal32(int defaultValue = 0) const { return ToDecimal32(nullptr, defaultValue); }
    long long ToDecimal64(int* errorPosition, long long defaultValue) const;
    long long ToDecimal64(long long defaultValue = 0) const {
        return ToDecimal64(nullptr, defaultValue);
    }
    /// Hexadecimal digits in either case, without sign or prefix.
    unsigned ToHex32(int* errorPosition, unsigned defaultValue) const;
    unsigned ToHex32(unsigned defaultValue = 0) const { return ToHex32(nullptr, defaultValue); }
    unsigned long long ToHex64(int* errorPosition, unsigned long long defaultValue) const;
    unsigned long long ToHex64(unsigned long long defaultValue = 0) const {
        return ToHex64(nullptr, defaultValue);
    }
    /// An optional sign and digits of a base from 2 to 36, letters in either case. Another base
    /// reads nothing.
    long long ToCustom(int base, int* errorPosition, long long defaultValue) const;
    long long ToCustom(int base, long long defaultValue = 0) const {
        return ToCustom(base, nullptr, defaultValue);
    }
    /// A decimal number that is the whole text ("017" is 17), or digits after "0x" (base 16; "0X"
    /// is not accepted), "0b" (2) or "0" (8), or the words "min" and "max", ignoring case, for the
    /// ends of the range.
    int ToInt32(int* errorPosition, int defaultValue) const;
    int ToInt32(int defaultValue = 0) const { return ToInt32(nullptr, defaultValue); }
    long long ToInt64(int* errorPosition, long long defaultValue) const;
    long long ToInt64(long long defaultValue = 0) const { return ToInt64(nullptr, defaultValue); }
    /// What strtod reads, infinity past the range included, if that is the whole text; otherwise
    /// defaultValue. errno stays as it was.
    double ToFloat(int* errorPosition, double defaultValue) const;
    double ToFloat(double defaultValue = 0) const { return ToFloat(nullptr, defaultValue); }
    /// A decimal number (true unless 0), or one of true, yes, on, false, no, off.
    bool ToBool(bool defaultValue = false) const;

    bool IsDecimal32() const;
    bool IsDecimal64() const;
    bool IsFloat() const;
    /// Hexadecimal digits only, any number of them.
    bool IsHex() const;
    bool IsInt32() const;
    bool IsInt64() const;

    // Other widths of characters

    static unsigned char ToAnsiChar(char c) { return static_cast<unsigned char>(c); }
    static unsigned short ToWideChar(char c) { return ToAnsiChar(c); }
    static unsigned int ToLongChar(char c) { return ToAnsiChar(c); }
    /// The low 8 bits of the code unit.
    static char FromAnsiChar(unsigned char c) { return static_cast<char>(c); }
    static char FromWideChar(unsigned short c) { return static_cast<char>(c & 0xFF); }
    static char FromLongChar(unsigned int c) { return static_cast<char>(c & 0xFF); }

    /// Copies the text to out, which has room for size units, cut where it must be and always with
    /// a NUL behind it. Returns the number of characters copied; 0 when there is no room at all.
    int GetString(char* out, int size) const;
    int GetString(unsigned short* out, int size) const;
    int GetString(unsigned int* out, int size) const;
    /// The characters, without a NUL, as units of 8, 8, 16 and 32 bits.
    Buffer GetRawBuffer() const;
    Buffer GetAnsiBuffer() const;
    Buffer GetUnicode16Buffer() const;
    Buffer GetUnicode32Buffer() const;

    // Output

    /// Writes the text to the console, with a line end when asked. Defined with the console.
    void print(bool newLine = false) const;
    /// The text and a line end ("\n").
    [[nodiscard]] String nl() const { return AppendNew('\n'); }

private:
    friend class TextBuilder;

    void addHolder() const {
        if (data_ != nullptr) {
            ++data_->count;
        }
    }
    /// Drops one holder; null is ignored.
    static void deleteStringData(StringData* data) {
        if (data != nullptr && --data->count < 1) {
            freeBlock(data);
        }
    }
    static void freeBlock(StringData* data);

    /// Takes the place of the text; the pieces hold no NUL and may lie within this text.
    void setPieces(std::string_view first, std::string_view second = {},
                   std::string_view third = {});
    /// The text of the pieces, which hold no NUL; a copy of this text if it equals that.
    String joined(std::string_view first, std::string_view second = {},
                  std::string_view third = {}) const;
    /// Makes buffer (new char[], from now on owned) the text, in a record of its own.
    void adopt(char* buffer);
    template <Integer Value>
    static auto widened(Value value) {
        if constexpr (std::unsigned_integral<Value>) {
            return static_cast<unsigned long long>(value);
        } else {
            return static_cast<long long>(value);
        }
    }
    /// Puts value into every place of the placeholder, in this text.
    void fillIn(int index, PaddedText const& value);
    void fillIn(String const& name, PaddedText const& value);
    template <class Key, class Value>
    void fillInInteger(Key const& key, Value value, int width, int base, Align align, char fill);
    template <class Key>
    void fillInNumber(Key const& key, NumberText const& number);
    template <class Finder>
    void substitute(PaddedText const& value, Finder find);

    template <class Unit>
    void setUnits(Unit const* units, int length);
    template <class Unit>
    int getUnits(Unit* out, int size) const;
    template <class Unit>
    Buffer getUnitBuffer() const;

    StringData* data_ = nullptr;
};

[[nodiscard]] String operator+(char const* left, String const& right);
[[nodiscard]] String operator+(char left, String const& right);
/// Joins two paths in the style of the platform; see String::AppendPath.
[[nodiscard]] String operator/(char const* left, String const& right);

/// See String::FormatByteSize.
String FormatByteSize(long long bytes, bool roundUp);

}  // namespace core
