#pragma once

namespace core {

/// Arms the wake-up timer; false when it is armed already.
bool timerInit();
/// Starts an armed timer, which calls TimerFunc every 250 ms on a thread of its own. Not before the
/// main loop: many programs never get there, and the thread is a seventh of their start-up time.
void timerStart();
/// Disarms it and waits until its thread has ended.
void timerDone();

/// What the timer calls: wakes the main loop, which so never sleeps long, work or not.
void TimerFunc();

}  // namespace core
