#pragma once

namespace sys {

/// How a system writes paths.
struct PathStyle {
    /// The character written between two names.
    char delimiter;
    /// All characters that the operating system accepts as a delimiter, as a set.
    char const* delimiters;
    /// The character between two directories of a list such as PATH.
    char listSeparator;
    /// Whether a path may begin with a drive ("C:") or with two delimiters and a host.
    bool hasDrives;
};

/// A backslash is an ordinary character of a name here.
inline constexpr PathStyle posixPathStyle{'/', "/", ':', false};
inline constexpr PathStyle windowsPathStyle{'\\', "\\/", ';', true};

/// The style of the system that the program runs on.
PathStyle const& pathStyle();

}  // namespace sys
