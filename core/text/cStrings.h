#pragma once

namespace core {

// Functions for C strings.

// Bounded copies; size includes the NUL. Results are truncated to fit and NUL-terminated. A null
// source is empty; a null or zero-sized target is left unchanged.

/// Copies source to target. Returns target.
char* _strNCpy(char* target, char const* source, int size);
/// Copies source to target. Returns the number of characters copied.
int _strCopyLimited(char* target, int size, char const* source);
/// Appends source to the string in target. Returns the number of characters appended. A target
/// without a NUL is full: its last character is replaced by one.
int _strConcatLimited(char* target, int size, char const* source);

/// Returns the first c in text, or null if there is none, if c is NUL or if text is null.
char const* _strChr(char const* text, char c);

// Conversions to numbers. A null string is empty, leading white space is skipped, and a value out
// of range is clamped: a negative one to 0 for unsigned types.

/// Returns the number at the start of text; 0 if there is none.
int strToInt(char const* text);
unsigned strToUInt(char const* text);
long long strToInt64(char const* text);
unsigned long long strToUInt64(char const* text);
double strToFloat(char const* text);

/// Returns the number if it is the whole string, otherwise defaultValue.
int strToIntDef(char const* text, int defaultValue);
unsigned strToUIntDef(char const* text, unsigned defaultValue);
long long strToInt64Def(char const* text, long long defaultValue);
unsigned long long strToUInt64Def(char const* text, unsigned long long defaultValue);
double strToFloatDef(char const* text, double defaultValue);

/// Fills values, an array of count elements, from a list such as "1, 2,,4". An element whose entry
/// is missing or not a number gets defaultValue; entries after the first count are ignored. Returns
/// the number of elements that got a number.
int strToIntArrayDef(char const* text, int* values, int count, int defaultValue,
                     char separator = ',');
int strToUIntArrayDef(char const* text, unsigned* values, int count, unsigned defaultValue,
                      char separator = ',');
int strToInt64ArrayDef(char const* text, long long* values, int count, long long defaultValue,
                       char separator = ',');

}  // namespace core
