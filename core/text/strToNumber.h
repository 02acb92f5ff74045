#pragma once

namespace core {

// Numbers out of C strings. Null counts as empty, white space in front is skipped, a number past
// the range is cut to the range's end; a negative one read as unsigned gives 0.

/// What can be read at the front; 0 when nothing can.
int strToInt(char const* text);
unsigned strToUInt(char const* text);
long long strToInt64(char const* text);
unsigned long long strToUInt64(char const* text);
double strToFloat(char const* text);

/// The number when it is the whole text, else defaultValue.
int strToIntDef(char const* text, int defaultValue);
unsigned strToUIntDef(char const* text, unsigned defaultValue);
long long strToInt64Def(char const* text, long long defaultValue);
unsigned long long strToUInt64Def(char const* text, unsigned long long defaultValue);
double strToFloatDef(char const* text, double defaultValue);

/// Fills all count places of values, which the caller owns, from a list such as "1, 2,,4". A place
/// without an entry, or whose entry is not a number, gets defaultValue; entries past count are
/// ignored. Returns how many places got a number.
int strToIntArrayDef(char const* text, int* values, int count, int defaultValue,
                     char separator = ',');
int strToUIntArrayDef(char const* text, unsigned* values, int count, unsigned defaultValue,
                      char separator = ',');
int strToInt64ArrayDef(char const* text, long long* values, int count, long long defaultValue,
                       char separator = ',');

}  // namespace core
