#pragma once

namespace core {

// Copies into room of a fixed size, which counts the NUL: whatever is copied is cut where it must
// be and ends with a NUL. Null sources count as empty; null or no room at all is left alone.

/// Copies source; returns target.
char* _strNCpy(char* target, char const* source, int size);
/// Copies source; returns the number of characters copied.
int _strCopyLimited(char* target, int size, char const* source);
/// Appends source to the text in target; returns the number of characters appended. A target
/// without NUL is full and gets one in its last place.
int _strConcatLimited(char* target, int size, char const* source);

/// The first c in text; null when there is none, for NUL, and for a null text.
char const* _strChr(char const* text, char c);

}  // namespace core
