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

/// Types that are formatted as integers: integers and unscoped enumerations.
template <class Value>
concept Integer = std::integral<Value> ||
    (std::is_enum_v<Value>&& std::is_convertible_v<Value, long long>);

struct PaddedText;
class NumberText;

/// The copy-on-write string: 8-bit characters without NUL. A copy only increments a counter; an
/// empty string allocates nothing.
///
/// - Positions start at 0; "not found" is -1. No operation reports an error or reads outside the
///   string. A negative start is 0, a start after the end selects nothing, a count is clamped to
///   the characters that follow, and a negative count selects all of them.
/// - Operations that change this string are documented so; all others return a new string, which
///   shares this string's record if it is equal.
/// - Letters are ASCII letters. Functions whose names end in IC ignore their case. All other bytes
///   are opaque. A null pointer is an empty string.
/// - Threads: the reference count is not atomic. Call Unique on a copy before passing that copy to
///   another thread.
class String {
public:
    /// Alignment in a wider field. AlignDefault is AlignRight for numbers and AlignLeft for
    /// strings; any other value is AlignLeft.
    enum class Align { Default = 0, Left = 1, Right = 2, Center = 3 };
    static constexpr Align AlignDefault = Align::Default;
    static constexpr Align AlignLeft = Align::Left;
    static constexpr Align AlignRight = Align::Right;
    static constexpr Align AlignCenter = Align::Center;

    /// The maximum length, in characters; longer results are truncated.
    static constexpr int MaxLength = 0x4000000;
    /// The maximum width of a padded value, in characters; larger widths are clamped.
    static constexpr int MaxWidth = 0xFFFF;
    /// The maximum number of decimal places: no double has more.
    static constexpr int MaxPrecision = 1074;

    /// The record that copies share, from StringPool, which links the free ones.
    struct StringData {
        int count;
        /// The number of characters, or unknownLength: up to the first NUL.
        int length;
        union {
            char* buffer;
            StringData* nextFree;
        };
        /// The number of characters that fit into the buffer, besides a NUL.
        int capacity;
        /// The buffer of a short string.
        char shortBuffer[12];

        static constexpr std::size_t shortCapacity = sizeof shortBuffer - 1;
        static constexpr int unknownLength = -1;
    };

    String() = default;
    /// See SetString.
    String(char const* text, int length = -1) { SetString(text, length); }
    /// Copies text, which need not be NUL-terminated, up to its first NUL.
    explicit String(std::string_view text) { SetParts(text.substr(0, text.find('\0'))); }
    String(String const& other) : data_(other.data_) { AddReference(); }
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

    // Assignment: each function replaces this string.

    /// Copies text up to its NUL, but at most length characters; a negative length means no limit.
    void SetString(char const* text, int length = -1);
    /// Repeats c count times; an empty string if count is below 1 or c is NUL.
    void SetString(char c, int count);
    /// Shares the record of other.
    void SetString(String const& other) { *this = other; }
    /// Copies the low 8 bits of each code unit, up to the first that are NUL, but at most length
    /// units; a negative length means no limit.
    void SetString(unsigned short const* units, int length = -1);
    void SetString(unsigned int const* units, int length = -1);
    /// Copies the bytes up to the first NUL, but at most size.
    void SetBuffer(void const* data, int size);
    void SetBuffer(Buffer const& bytes);
    void Clear() { deleteStringData(std::exchange(data_, nullptr)); }

    /// Returns c repeated count times; an empty string if count is below 1 or c is NUL.
    [[nodiscard]] static String OfChar(char c, int count);

    // Storage

    /// Called before every change: unshares the buffer and resizes it to newLength characters (at
    /// most MaxLength; negative: the current length). Growing pads with NUL, shrinking truncates, 0
    /// clears.
    void CopyOnWrite(int newLength);
    void SetLength(int length) { CopyOnWrite(length); }
    /// Unshares and resizes the buffer like CopyOnWrite and returns it: length characters and a
    /// NUL, owned by the string. Returns null if length is 0 or above MaxLength, or if it is
    /// negative and the string is empty.
    char* GetBuffer(int length = -1);
    /// Unshares the buffer. Call it on a copy before passing that copy to another thread.
    void Unique() { CopyOnWrite(-1); }
    /// Whether both strings share one record or are empty.
    bool SameRef(String const& other) const { return data_ == other.data_; }

    /// Returns the NUL-terminated characters; never null, valid until this string changes.
    char const* getCString() const { return data_ != nullptr ? data_->buffer : ""; }
    /// Returns the characters without the NUL; valid until this string changes.
    std::string_view View() const {
        return data_ == nullptr || data_->length == StringData::unknownLength
                   ? std::string_view(getCString())
                   : std::string_view(data_->buffer, static_cast<std::size_t>(data_->length));
    }
    /// Returns the number of characters. After GetBuffer it counts them at each call.
    int GetLength() const { return static_cast<int>(View().size()); }
    bool IsEmpty() const { return *getCString() == '\0'; }

    // Comparison returns -1, 0 or 1. Bytes are compared as signed values: 0x80 sorts before "A".

    int Compare(String const& other) const;
    int Compare(char const* other) const;
    /// Compares both strings in upper case.
    int CompareIC(String const& other) const;
    bool operator==(String const& other) const { return Compare(other) == 0; }
    bool operator==(char const* other) const { return Compare(other) == 0; }
    std::strong_ordering operator<=>(String const& other) const { return Compare(other) <=> 0; }
    std::strong_ordering operator<=>(char const* other) const { return Compare(other) <=> 0; }

    // Whether the string starts, or ends, with another one.
    bool StartsWith(String const& prefix) const;
    bool StartsWithIC(String const& prefix) const;
    bool EndsWith(String const& suffix) const;
    bool EndsWithIC(String const& suffix) const;

    // Search

    /// Returns the position of the first occurrence at or after start, or -1. An empty pattern is
    /// found at the end, NUL never.
    int Find(char c, int start = 0) const;
    int Find(String const& pattern, int start = 0) const;
    int FindIC(char c, int start = 0) const;
    int FindIC(String const& pattern, int start = 0) const;
    /// Returns the position of the last occurrence that begins at or before start, or -1. A
    /// negative start finds nothing, so that a search can continue before a result at 0. An empty
    /// pattern is found at start or, if that is less, at the end.
    int RFind(char c, int start = INT_MAX) const;
    int RFind(String const& pattern, int start = INT_MAX) const;
    int RFindIC(char c, int start = INT_MAX) const;
    int RFindIC(String const& pattern, int start = INT_MAX) const;
    /// Returns the number of occurrences of c.
    int CountChars(char c) const;

    // Delimiters: every character of set is one. Find... and Last... return the position of the
    // first one at or after start, or of the last one, or -1; ...Not... finds the other characters.

    bool IsDelimiter(String const& set, int index) const;
    int FindDelimiter(String const& set, int start = 0) const;
    int FindNotDelimiter(String const& set, int start = 0) const;
    int LastDelimiter(String const& set) const;
    int LastNotDelimiter(String const& set) const;
    bool HasLeadingDelimiter(String const& set) const { return IsDelimiter(set, 0); }
    bool HasTrailingDelimiter(String const& set) const;
    /// Returns the string with delimiter appended unless it ends with a character of set.
    [[nodiscard]] String ForceTrailingDelimiter(String const& set, char delimiter) const;

    // Substrings

    /// Returns the characters from start on, at most count.
    [[nodiscard]] String Copy(int start, int count = -1) const;
    /// Returns the concatenation of two substrings.
    [[nodiscard]] String Copy(int start, int count, int secondStart, int secondCount) const;
    /// Returns the characters from position from up to position to, which is excluded unless
    /// inclusive is set; an empty string if to is less than from.
    [[nodiscard]] String CopyRange(int from, int to, bool inclusive = false) const;
    /// Returns the first, or last, count characters.
    [[nodiscard]] String Left(int count) const { return Copy(0, count); }
    [[nodiscard]] String Right(int count) const;
    /// Returns the part before the first occurrence; an empty string if there is none.
    [[nodiscard]] String LeftOf(char c) const;
    [[nodiscard]] String LeftOf(String const& pattern) const;
    [[nodiscard]] String LeftOfIC(char c) const;
    [[nodiscard]] String LeftOfIC(String const& pattern) const;
    /// Returns the part after the first occurrence; an empty string if there is none.
    [[nodiscard]] String RightOf(char c) const;
    [[nodiscard]] String RightOf(String const& pattern) const;
    [[nodiscard]] String RightOfIC(char c) const;
    [[nodiscard]] String RightOfIC(String const& pattern) const;
    /// Returns the part after the last occurrence; an empty string if there is none.
    [[nodiscard]] String RightBy(char c) const;
    [[nodiscard]] String RightBy(String const& pattern) const;
    [[nodiscard]] String RightByIC(char c) const;
    [[nodiscard]] String RightByIC(String const& pattern) const;

    /// Returns the character at index, or NUL if index is out of range.
    char GetChar(int index) const;
    char operator[](int index) const { return GetChar(index); }
    char FirstChar() const { return *getCString(); }
    char LastChar() const;

    // Editing: each function changes this string, except AppendNew and operator+.

    /// Replaces the character at index; NUL truncates the string there. Does nothing if index is
    /// out of range.
    void SetChar(int index, char c);
    /// Inserts text before the character at position.
    void Insert(String const& text, int position);
    /// Removes count characters from start on, or from either end.
    void Delete(int start, int count = -1);
    void DeleteFromLeft(int count) { Delete(0, count); }
    void DeleteFromRight(int count);
    /// Appends text. A string takes amortised constant time for each character appended.
    void Append(String const& text);
    void Append(char const* text);
    /// Appends c unless it is NUL.
    void Append(char c);
    /// Appends the bytes up to the first NUL.
    void Append(Buffer const& bytes);
    String& operator+=(String const& text);
    String& operator+=(char const* text);
    [[nodiscard]] String AppendNew(String const& text) const;
    [[nodiscard]] String AppendNew(char const* text) const;
    [[nodiscard]] String AppendNew(char c) const;
    [[nodiscard]] String AppendNew(Buffer const& bytes) const;
    [[nodiscard]] String operator+(String const& text) const { return AppendNew(text); }
    [[nodiscard]] String operator+(char const* text) const { return AppendNew(text); }
    [[nodiscard]] String operator+(char c) const { return AppendNew(c); }

    // Case, character classes, trimming

    [[nodiscard]] String UpperCase() const;
    [[nodiscard]] String LowerCase() const;
    /// Returns the string with the first letter of each word in upper case and the others in lower
    /// case. White space separates words.
    [[nodiscard]] String CapitalCase() const;
    static char ToUpper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; }
    static char ToLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

    /// Whether c is space, tab, CR, LF or NUL, so that a scan for white space ends at the NUL.
    static bool IsWhiteSpace(char c);
    /// Whether c is one of ".,:;!?" or NUL, as in IsWhiteSpace.
    static bool IsPuntuaction(char c);
    static bool IsNewLine(char c) { return c == '\r' || c == '\n'; }
    static bool IsNumeric(char c) { return c >= '0' && c <= '9'; }
    static bool IsAlphabetic(char c) { return ToUpper(c) >= 'A' && ToUpper(c) <= 'Z'; }
    static bool IsAlphanumeric(char c) { return IsNumeric(c) || IsAlphabetic(c); }

    /// Returns the string without leading and trailing white space.
    [[nodiscard]] String Trim() const;
    [[nodiscard]] String TrimLeft() const;
    [[nodiscard]] String TrimRight() const;

    // Replacing

    /// Returns the string with every occurrence of find, from left to right, replaced. Replacements
    /// are not searched. An empty find appends with once, unless the string is empty: it is found
    /// at the end only.
    [[nodiscard]] String Replace(String const& find, String const& with) const;
    [[nodiscard]] String ReplaceIC(String const& find, String const& with) const;
    /// Returns the string with every line break (CR LF, CR or LF) replaced.
    [[nodiscard]] String ReplaceNewLine(String const& with) const;
    /// Returns the string with every CR and LF replaced by c, or removed if c is NUL.
    [[nodiscard]] String FilterNewLineChar(char c = ' ') const;

    // Tokens

    /// Appends the parts between delimiters to out, including empty ones, except an empty part
    /// after the last delimiter. Returns the number of entries in out.
    int Split(StringArray& out, String const& delimiters) const;
    int Split(StringArray& out, char delimiter) const;
    /// Removes the part up to and including the first delimiter from this string and returns it
    /// without the delimiter; the whole string if there is none.
    String ExtractNextToken(String const& delimiters);
    String ExtractNextToken(char delimiter);
    /// The same, ignoring delimiters between two equal characters of quotes. An unclosed quote
    /// extends to the end. The token keeps its quotes.
    String ExtractNextToken(String const& delimiters, String const& quotes);
    /// Removes the last delimiter and the part after it from this string and returns that part;
    /// the whole string if there is no delimiter.
    String ExtractLastToken(String const& delimiters);
    String ExtractLastToken(char delimiter);

    /// Returns the string between two quote characters; does not escape quotes in it.
    [[nodiscard]] String Quote(char quote = '"') const;
    /// Returns the string without its first and last character if both are quote.
    [[nodiscard]] String Unquote(char quote = '"') const;
    /// Returns the value of the first property at or after start with that name, ignoring case, in
    /// a string such as: type=flat; size = "3 4". White space, commas and semicolons separate
    /// properties, except in a value in single or double quotes, which are removed. After a closing
    /// quote the separator is optional. Returns an empty string if there is no such property.
    [[nodiscard]] String GetProperty(String const& name, int start = 0) const;

    // Paths, in the platform's style by default

    static String PathDelimiter(sys::PathStyle const& style = sys::pathStyle());
    /// Returns all characters that are delimiters in the style.
    static String PathDelimiters(sys::PathStyle const& style = sys::pathStyle());
    /// Returns the path with every slash and backslash replaced by the style's delimiter.
    [[nodiscard]] String EnsurePlatformPathDelimiters(
        sys::PathStyle const& style = sys::pathStyle()) const;
    /// Returns the part after the last delimiter.
    [[nodiscard]] String GetFileName(sys::PathStyle const& style = sys::pathStyle()) const;
    /// Returns the part before the last delimiters; a root keeps its delimiter ("/" for "/a").
    [[nodiscard]] String GetFilePath(sys::PathStyle const& style = sys::pathStyle()) const;
    /// Returns the file name from its last dot on (".zip"); leading dots belong to the name.
    [[nodiscard]] String GetFileExt(sys::PathStyle const& style = sys::pathStyle()) const;
    [[nodiscard]] String GetFileNameWithoutExt(
        sys::PathStyle const& style = sys::pathStyle()) const;
    /// Returns the path with another extension, with or without its dot. An empty ext removes the
    /// extension.
    [[nodiscard]] String ReplaceFileExt(String const& ext,
                                        sys::PathStyle const& style = sys::pathStyle()) const;
    /// Appends part, with exactly one delimiter between the two unless one of them is empty;
    /// changes this string.
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
    /// Returns the path without its leading, or trailing, delimiters.
    [[nodiscard]] String ForceNoLeadingPathDelimiter(
        sys::PathStyle const& style = sys::pathStyle()) const;
    [[nodiscard]] String ForceNoTrailingPathDelimiter(
        sys::PathStyle const& style = sys::pathStyle()) const;
    /// Returns the path with each run of delimiters reduced to its first one. Two leading ones, as
    /// of a network path, stay in a style with drives.
    [[nodiscard]] String RemoveDuplicatedPathDelimiters(
        sys::PathStyle const& style = sys::pathStyle()) const;

    // Formatting. A template contains numbered placeholders (%1, %12: a percent sign and the
    // longest run of digits, up to 99999999) and named ones (%[name], ignoring case). A percent
    // sign before anything else is text, and "%%1" is a percent sign and placeholder 1. Each call
    // of a chain replaces every occurrence of one placeholder:
    //     String::format("%1 of %2").argi(1, done).argi(2, FormatByteSize(total, false))
    // An index of 0 or below means the lowest number in the template. A call does not search the
    // value that it inserts, but later calls do. A missing placeholder is ignored, an unused one
    // stays. A value longer than width is not truncated; a fill below 32 means space.

    /// Returns the template, to start a chain.
    [[nodiscard]] static String format(String const& text) { return text; }
    [[nodiscard]] static String format(char const* text) { return text; }

    // Calls on a temporary, as all but the first of a chain are, reuse its record.

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
    /// A base other than 2 to 36 makes the whole result "*ERR*", to make the mistake visible. In
    /// bases other than 10, a negative number is formatted as its 64 bits, and right alignment pads
    /// with "0" by default. In base 10, a fill other than space follows the sign, which does not
    /// count towards width: -5 with width 3 and fill "0" is "-005".
    template <Integer Value>
    [[nodiscard]] String argi(int index, Value value, int width = 0, int base = 10,
                              Align align = AlignDefault, char fill = '\0') && {
        FillInInteger(index, Widest<Value>(value), width, base, align, fill);
        return std::move(*this);
    }
    template <Integer Value>
    [[nodiscard]] String argi(int index, Value value, int width = 0, int base = 10,
                              Align align = AlignDefault, char fill = '\0') const& {
        return String(*this).argi(index, value, width, base, align, fill);
    }
    /// Formats as printf does. format is one of "aAeEfFgG", anything else is "g"; a negative
    /// precision is printf's default.
    [[nodiscard]] String argi(int index, double value, int width = 0, char format = 'g',
                              int precision = -1, Align align = AlignDefault,
                              char fill = '\0') const;
    /// Formats as "0x" and at least eight hexadecimal digits.
    [[nodiscard]] String argi(int index, void const* value) const;
    [[nodiscard]] String argi_choice(int index, bool condition, String const& ifTrue,
                                     String const& ifFalse, int width = 0,
                                     Align align = AlignDefault, char fill = '\0') const;
    /// Formats this thread's errno; with withText also its description, see errnoDescription:
    /// "2: No such file or directory" or "0: OK".
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
        result.FillInInteger(name, Widest<Value>(value), width, base, align, fill);
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

    /// Finds the first placeholder with that index (0 or below: the lowest number) at or after
    /// start. Returns its number and stores its position and length, including the percent sign;
    /// if there is none, returns 0 and stores -1 and 0.
    int findArgPlaceHolderByIndex(int index, int& position, int& length, int start = 0) const;

    /// Returns the string padded to width characters. When centring, the larger half of the padding
    /// comes first.
    [[nodiscard]] String GetAligned(int width, Align align, char fill = '\0') const;

    /// Formats as the C library does. Returns an empty string if the library reports an error.
    [[gnu::format(printf, 1, 2)]] static String sprintf(char const* format, ...);
    static String vsprintf(char const* format, va_list args);

    /// Returns a human-readable size such as "1.9 MB", with one decimal or rounded up to an
    /// integer. Units are B, KB, MB, GB and TB in steps of 1024, each used above one and a half of
    /// it. The calculation, in double precision, first rounds bytes.
    static String FormatByteSize(long long bytes, bool roundUp);

    /// Returns the tag's characters up to its first NUL or, if safe is set, its SafeDump.
    static String FromMultiChar4(MChar4 const& tag, bool safe);
    static String FromMultiChar8(MChar8 const& tag, bool safe);

    // Conversion to numbers. Leading white space is skipped. If the whole string is a number, -1 is
    // stored in errorPosition, which may be null. If only its start is one, that number is returned
    // and the position of the first other character stored. Otherwise defaultValue is returned and
    // nothing stored. Integers out of range are clamped. The functions Is... require that the whole
    // string is a number in range.

    /// Parses an optional sign and decimal digits.
    int ToDecimal32(int* errorPosition, int defaultValue) const;
    int ToDecimal32(int defaultValue = 0) const { return ToDecimal32(nullptr, defaultValue); }
    long long ToDecimal64(int* errorPosition, long long defaultValue) const;
    long long ToDecimal64(long long defaultValue = 0) const {
        return ToDecimal64(nullptr, defaultValue);
    }
    /// Parses hexadecimal digits in either case, without a sign or prefix.
    unsigned ToHex32(int* errorPosition, unsigned defaultValue) const;
    unsigned ToHex32(unsigned defaultValue = 0) const { return ToHex32(nullptr, defaultValue); }
    unsigned long long ToHex64(int* errorPosition, unsigned long long defaultValue) const;
    unsigned long long ToHex64(unsigned long long defaultValue = 0) const {
        return ToHex64(nullptr, defaultValue);
    }
    /// Parses an optional sign and digits of base, in either case. Returns defaultValue if base is
    /// not from 2 to 36.
    long long ToCustom(int base, int* errorPosition, long long defaultValue) const;
    long long ToCustom(int base, long long defaultValue = 0) const {
        return ToCustom(base, nullptr, defaultValue);
    }
    /// Parses a decimal number that is the whole string ("017" is 17), digits after "0x" (base 16;
    /// not "0X"), "0b" (2) or "0" (8), or "min" or "max", ignoring case: the ends of the range.
    int ToInt32(int* errorPosition, int defaultValue) const;
    int ToInt32(int defaultValue = 0) const { return ToInt32(nullptr, defaultValue); }
    long long ToInt64(int* errorPosition, long long defaultValue) const;
    long long ToInt64(long long defaultValue = 0) const { return ToInt64(nullptr, defaultValue); }
    /// Parses as strtod does, including infinity for numbers out of range; returns defaultValue
    /// unless the whole string is a number. Preserves errno.
    double ToFloat(int* errorPosition, double defaultValue) const;
    double ToFloat(double defaultValue = 0) const { return ToFloat(nullptr, defaultValue); }
    /// Parses a decimal number (true unless 0) or, ignoring case, true, yes, on, false, no or off;
    /// returns defaultValue for anything else.
    bool ToBool(bool defaultValue = false) const;

    bool IsDecimal32() const;
    bool IsDecimal64() const;
    bool IsFloat() const;
    /// Whether the string consists of hexadecimal digits, at least one.
    bool IsHex() const;
    bool IsInt32() const;
    bool IsInt64() const;

    // Code units of other widths

    static unsigned char ToAnsiChar(char c) { return static_cast<unsigned char>(c); }
    static unsigned short ToWideChar(char c) { return ToAnsiChar(c); }
    static unsigned int ToLongChar(char c) { return ToAnsiChar(c); }
    /// Returns the low 8 bits of the code unit.
    static char FromAnsiChar(unsigned char c) { return static_cast<char>(c); }
    static char FromWideChar(unsigned short c) { return static_cast<char>(c & 0xFF); }
    static char FromLongChar(unsigned int c) { return static_cast<char>(c & 0xFF); }

    /// Copies the string to out, truncated to fit into size units with a NUL. Returns the number of
    /// characters copied. Does nothing and returns 0 if out is null or size is below 1.
    int GetString(char* out, int size) const;
    int GetString(unsigned short* out, int size) const;
    int GetString(unsigned int* out, int size) const;
    /// Returns the characters, without a NUL, as units of 8, 8, 16 and 32 bits.
    Buffer GetRawBuffer() const;
    Buffer GetAnsiBuffer() const;
    Buffer GetUnicode16Buffer() const;
    Buffer GetUnicode32Buffer() const;

    // Output

    /// Writes the string to standard output, with a line feed if newLine is set. Defined in
    /// core/console.
    void print(bool newLine = false) const;
    /// Returns the string with a line feed appended.
    [[nodiscard]] String nl() const { return AppendNew('\n'); }

private:
    void AddReference() const {
        if (data_ != nullptr) {
            ++data_->count;
        }
    }
    /// Releases a reference to data, which may be null.
    static void deleteStringData(StringData* data) {
        if (data != nullptr && --data->count < 1) {
            freeBlock(data);
        }
    }
    static void freeBlock(StringData* data);

    /// Whether this string has a record that it does not share.
    bool IsUnique() const { return data_ != nullptr && data_->count == 1; }
    /// Assigns the concatenation of parts without NUL, which may be parts of this string, in a new
    /// buffer with capacity for spare more characters.
    void SetParts(std::string_view first, std::string_view second = {}, std::string_view third = {},
                  std::size_t spare = 0);
    /// Replaces the characters between head and tail, the start and the end of this string, by
    /// text, which may be part of this string.
    void Splice(std::string_view head, std::string_view text, std::string_view tail);
    void AppendPart(std::string_view part);
    /// Returns the concatenation of parts without NUL; a copy of this string if that is equal.
    String Join(std::string_view first, std::string_view second = {},
                std::string_view third = {}) const;
    template <Integer Value>
    using Widest = std::conditional_t<std::unsigned_integral<Value>, unsigned long long, long long>;
    /// Replaces every occurrence of the placeholder in this string.
    void FillIn(int index, PaddedText const& value);
    void FillIn(String const& name, PaddedText const& value);
    template <class Key, class Value>
    void FillInInteger(Key const& key, Value value, int width, int base, Align align, char fill);
    template <class Key>
    void FillInNumber(Key const& key, NumberText const& number);
    template <class Finder>
    void Substitute(PaddedText const& value, Finder find);

    StringData* data_ = nullptr;
};

[[nodiscard]] String operator+(char const* left, String const& right);
[[nodiscard]] String operator+(char left, String const& right);
/// Joins two paths in the platform's style; see String::AppendPath.
[[nodiscard]] String operator/(char const* left, String const& right);

/// See String::FormatByteSize.
String FormatByteSize(long long bytes, bool roundUp);

}  // namespace core
