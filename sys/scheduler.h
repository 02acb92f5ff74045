#pragma once

#include <cstdint>

/// Time as the whole library measures it: the system's millisecond tick. It is 32 bits wide and
/// wraps after about 49.7 days; a timer that runs across the wrap sees time jump back. The finer
/// units are the same tick multiplied.
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

/// Where ticks come from; tests put a clock of their own in the place of the system's.
using TickSource = std::uint32_t (*)();
/// Takes ticks from source from now on; null takes the system's again.
void setTickSource(TickSource source);

}  // namespace sys::scheduler
