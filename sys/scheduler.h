#pragma once

#include <cstdint>

/// Time as the library measures it: a tick of one millisecond. It is 32 bits wide and wraps after
/// about 49.7 days; a timer that runs across the wrap sees time jump back. The finer units are
/// multiples of the same tick.
namespace sys::scheduler {

unsigned long long getcurrtickms();
unsigned long long getcurrtickus();
unsigned long long getcurrtickns();

/// Gives up the rest of the time slice.
void yield();
/// Sleeps ms milliseconds; a negative value counts as 0.
void sleepms(int ms);
/// Sleep the whole milliseconds in their argument; less than one only yields.
void sleepus(int us);
void sleepns(int ns);

/// A clock, which tests can replace by their own.
using TickSource = std::uint32_t (*)();
/// Sets the clock; null restores that of the platform.
void setTickSource(TickSource source);

}  // namespace sys::scheduler
