#include "job/TransferMeter.h"

#include <algorithm>
#include <climits>

namespace job {

namespace {

int const window = 5'000;
int const reportPeriod = 1'000;

}  // namespace

void TransferMeter::Start(long long now) {
    start_ = lastReport_ = now;
    samples_.assign(1, {now, 0});
}

void TransferMeter::Add(long long now, int sent) {
    while (samples_.size() > 1 && now - samples_.front().time > window) {
        samples_.pop_front();
    }
    samples_.push_back({now, sent});
}

int TransferMeter::Rate() const {
    Sample const& first = samples_.front();
    Sample const& last = samples_.back();
    return last.time > first.time ? rateOf(last.sent - first.sent, last.time - first.time) : 0;
}

bool TransferMeter::IsReportDue(long long now) {
    if (now - lastReport_ < reportPeriod) {
        return false;
    }
    lastReport_ = now;
    return true;
}

int rateOf(long long bytes, long long milliseconds) {
    return static_cast<int>(
        std::min<long long>(1000 * bytes / std::max(milliseconds, 1LL), INT_MAX));
}

}  // namespace job
