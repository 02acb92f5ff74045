#include <algorithm>

#include "core/text/String.h"
#include "core/text/TextBuilder.h"
#include "core/text/mapCharacters.h"

namespace core {

namespace {

constexpr auto npos = std::string_view::npos;

bool isDelimiter(char c, sys::PathStyle const& style) {
    return std::string_view(style.delimiters).find(c) != npos;
}

/// Returns the length of the root: "/", "C:" or "C:\".
std::size_t rootLength(std::string_view path, sys::PathStyle const& style) {
    bool const drive =
        style.hasDrives && path.size() >= 2 && String::IsAlphabetic(path[0]) && path[1] == ':';
    std::size_t const length = drive ? 2 : 0;
    return path.size() > length && isDelimiter(path[length], style) ? length + 1 : length;
}

std::size_t nameStart(std::string_view path, sys::PathStyle const& style) {
    std::size_t const last = path.find_last_of(style.delimiters);
    return std::max(last == npos ? 0 : last + 1, rootLength(path, style));
}

/// Returns where the extension of a file name begins; its size if there is none.
std::size_t extStart(std::string_view name) {
    std::size_t const dot = name.rfind('.');
    std::size_t const first = name.find_first_not_of('.');
    return dot == npos || first == npos || first > dot ? name.size() : dot;
}

std::string_view withoutLeading(std::string_view path, sys::PathStyle const& style) {
    return path.substr(std::min(path.find_first_not_of(style.delimiters), path.size()));
}

std::string_view withoutTrailing(std::string_view path, sys::PathStyle const& style) {
    return path.substr(0, path.find_last_not_of(style.delimiters) + 1);
}

}  // namespace

String String::PathDelimiter(sys::PathStyle const& style) {
    return OfChar(style.delimiter, 1);
}

String String::PathDelimiters(sys::PathStyle const& style) {
    return style.delimiters;
}

String String::EnsurePlatformPathDelimiters(sys::PathStyle const& style) const {
    return mapCharacters(*this,
                         [&](char c) { return c == '/' || c == '\\' ? style.delimiter : c; });
}

String String::GetFileName(sys::PathStyle const& style) const {
    return Copy(static_cast<int>(nameStart(View(), style)));
}

String String::GetFilePath(sys::PathStyle const& style) const {
    std::string_view const path = View();
    std::string_view const directory =
        withoutTrailing(path.substr(0, nameStart(path, style)), style);
    return Left(static_cast<int>(std::max(directory.size(), rootLength(path, style))));
}

String String::GetFileExt(sys::PathStyle const& style) const {
    String const name = GetFileName(style);
    return name.Copy(static_cast<int>(extStart(name.View())));
}

String String::GetFileNameWithoutExt(sys::PathStyle const& style) const {
    String const name = GetFileName(style);
    return name.Left(static_cast<int>(extStart(name.View())));
}

String String::ReplaceFileExt(String const& ext, sys::PathStyle const& style) const {
    std::string_view const path = View();
    std::size_t const start = nameStart(path, style);
    std::string_view const stem = path.substr(0, start + extStart(path.substr(start)));
    bool const needsDot = !ext.IsEmpty() && ext.FirstChar() != '.';
    return Join(stem, needsDot ? "." : "", ext.View());
}

void String::AppendPath(String const& part, sys::PathStyle const& style) {
    *this = AppendNewPath(part, style);
}

String String::AppendNewPath(String const& part, sys::PathStyle const& style) const {
    if (IsEmpty() || part.IsEmpty()) {
        return AppendNew(part);
    }
    return Join(withoutTrailing(View(), style), {&style.delimiter, 1},
                withoutLeading(part.View(), style));
}

bool String::IsPathDelimiter(int index, sys::PathStyle const& style) const {
    char const c = GetChar(index);
    return c != '\0' && isDelimiter(c, style);
}

int String::FindPathDelimiter(int start, sys::PathStyle const& style) const {
    return FindDelimiter(style.delimiters, start);
}

int String::LastPathDelimiter(sys::PathStyle const& style) const {
    return LastDelimiter(style.delimiters);
}

bool String::HasLeadingPathDelimiter(sys::PathStyle const& style) const {
    return IsPathDelimiter(0, style);
}

bool String::HasTrailingPathDelimiter(sys::PathStyle const& style) const {
    return IsPathDelimiter(GetLength() - 1, style);
}

String String::ForceLeadingPathDelimiter(sys::PathStyle const& style) const {
    return HasLeadingPathDelimiter(style) ? *this : style.delimiter + *this;
}

String String::ForceTrailingPathDelimiter(sys::PathStyle const& style) const {
    return ForceTrailingDelimiter(style.delimiters, style.delimiter);
}

String String::ForceNoLeadingPathDelimiter(sys::PathStyle const& style) const {
    return Right(static_cast<int>(withoutLeading(View(), style).size()));
}

String String::ForceNoTrailingPathDelimiter(sys::PathStyle const& style) const {
    return Left(static_cast<int>(withoutTrailing(View(), style).size()));
}

String String::RemoveDuplicatedPathDelimiters(sys::PathStyle const& style) const {
    std::string_view const path = View();
    TextBuilder result;
    for (std::size_t i = 0; i < path.size(); ++i) {
        bool const repeated =
            i > 0 && isDelimiter(path[i], style) && isDelimiter(path[i - 1], style);
        bool const networkPath = style.hasDrives && i == 1;
        if (!repeated || networkPath) {
            result.Append(path[i]);
        }
    }
    return Join(result.View());
}

String operator/(char const* left, String const& right) {
    return String(left).AppendNewPath(right);
}

}  // namespace core
