#include <algorithm>

#include "core/text/String.h"
#include "core/text/findText.h"

namespace core {

namespace {

int position(std::size_t found) {
    return found != std::string_view::npos ? static_cast<int>(found) : -1;
}

std::size_t clipped(int start) {
    return static_cast<std::size_t>(std::max(start, 0));
}

}  // namespace

int String::Find(char c, int start) const {
    return position(View().find(c, clipped(start)));
}

int String::Find(String const& pattern, int start) const {
    return position(findText(View(), pattern.View(), clipped(start)));
}

int String::FindIC(char c, int start) const {
    return position(findTextIC(View(), {&c, 1}, clipped(start)));
}

int String::FindIC(String const& pattern, int start) const {
    return position(findTextIC(View(), pattern.View(), clipped(start)));
}

int String::RFind(char c, int start) const {
    return start < 0 ? -1 : position(View().rfind(c, clipped(start)));
}

int String::RFind(String const& pattern, int start) const {
    return start < 0 ? -1 : position(View().rfind(pattern.View(), clipped(start)));
}

int String::RFindIC(char c, int start) const {
    return start < 0 ? -1 : position(rfindTextIC(View(), {&c, 1}, clipped(start)));
}

int String::RFindIC(String const& pattern, int start) const {
    return start < 0 ? -1 : position(rfindTextIC(View(), pattern.View(), clipped(start)));
}

int String::CountChars(char c) const {
    std::string_view const text = View();
    return static_cast<int>(std::count(text.begin(), text.end(), c));
}

bool String::IsDelimiter(String const& set, int index) const {
    char const c = GetChar(index);
    return c != '\0' && set.Find(c) >= 0;
}

int String::FindDelimiter(String const& set, int start) const {
    return position(View().find_first_of(set.View(), clipped(start)));
}

int String::FindNotDelimiter(String const& set, int start) const {
    return position(View().find_first_not_of(set.View(), clipped(start)));
}

int String::LastDelimiter(String const& set) const {
    return position(View().find_last_of(set.View()));
}

int String::LastNotDelimiter(String const& set) const {
    return position(View().find_last_not_of(set.View()));
}

bool String::HasTrailingDelimiter(String const& set) const {
    return IsDelimiter(set, GetLength() - 1);
}

String String::ForceTrailingDelimiter(String const& set, char delimiter) const {
    return HasTrailingDelimiter(set) ? *this : AppendNew(delimiter);
}

}  // namespace core
