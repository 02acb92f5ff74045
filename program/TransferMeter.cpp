#include "program/TransferMeter.h"

#include <algorithm>

#include "core/time/saturatedMath.h"

namespace program {

namespace {

int const window = 5'000;
int const reportPeriod = 1'000;

}  // namespace

void TransferMeter::Start(long long now) {
    start_ = lastReport_ = now;
    samples_.assign(1, {now, 0});
}

void TransferMeter::Add(long long now, long long done) {
    while (samples_.size() > 1 && now - samples_.front().time > window) {
        samples_.pop_front();
    }
    samples_.push_back({now, done});
}

long long TransferMeter::Rate() const {
    Sample const& first = samples_.front();
    Sample const& last = samples_.back();
    return last.time > first.time ? rateOf(last.done - first.done, last.time - first.time) : 0;
}

bool TransferMeter::IsReportDue(long long now) {
    if (now - lastReport_ < reportPeriod) {
        return false;
    }
    lastReport_ = now;
    return true;
}

int percentOf(long long done, long long total) {
    if (done >= total) {
        return 100;
    }
    return static_cast<int>(100.0 * static_cast<double>(done) / static_cast<double>(total));
}

long long rateOf(long long bytes, long long milliseconds) {
    long long const divisor = std::max(milliseconds, 1LL);
    return core::math::composeSaturated(bytes / divisor, 1000, bytes % divisor * 1000 / divisor);
}

}  // namespace program
