#pragma once

namespace core {

/// Arms the wake-up timer, which calls TimerFunc every 250 ms on a thread of its own until
/// termination is requested; false when it is armed already or cannot be.
bool timerInit();
/// Disarms it and waits until its thread has ended.
void timerDone();

/// What the timer calls: wakes the main loop, which so never sleeps long, work or not.
void TimerFunc();

}  // namespace core
