#include "sys/scheduler.h"

#include <atomic>

#include "sys/platform/Process.h"

namespace sys::scheduler {

namespace {

std::atomic<TickSource> tickSource{&platform::tickCount};

unsigned long long ticks() {
    return tickSource.load(std::memory_order_relaxed)();
}

}  // namespace

unsigned long long getcurrtickms() {
    return ticks();
}

unsigned long long getcurrtickus() {
    return ticks() * 1000;
}

unsigned long long getcurrtickns() {
    return ticks() * 1000000;
}

void yield() {
    platform::sleepMilliseconds(0);
}

void sleepms(int ms) {
    platform::sleepMilliseconds(ms < 0 ? 0 : static_cast<std::uint32_t>(ms));
}

void sleepus(int us) {
    sleepms(us / 1000);
}

void sleepns(int ns) {
    sleepms(ns / 1000000);
}

void setTickSource(TickSource source) {
    tickSource = source != nullptr ? source : &platform::tickCount;
}

}  // namespace sys::scheduler
