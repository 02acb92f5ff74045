#pragma once

namespace sys {

/// The path syntax of a platform.
struct PathStyle {
    /// The character written between two names.
    char delimiter;
    /// The set of characters accepted as a delimiter.
    char const* delimiters;
    /// The character between two directories of a list such as PATH.
    char listSeparator;
    /// Whether a path may start with a drive ("C:") or with two delimiters and a host.
    bool hasDrives;
};

/// A backslash is an ordinary character of a name here.
inline constexpr PathStyle posixPathStyle{'/', "/", ':', false};
inline constexpr PathStyle windowsPathStyle{'\\', "\\/", ';', true};

/// Returns the style of the platform that the program runs on.
PathStyle const& pathStyle();

}  // namespace sys
