#include "core/runtime/ExecutionQueueAbstract.h"

#include <algorithm>
#include <new>

#include "sys/scheduler.h"

namespace core {

namespace {

/// Cancelled items are due at once, so that they leave the queue.
unsigned long long dueTick(ClassRef<ExecutionLink> const& item) {
    return item->IsCancelled() ? 0 : item->Bit()->GetNotBefore();
}

}  // namespace

char const* ExecutionBit::ClassName() const {
    return "ExecutionBit";
}

char const* ExecutionLink::ClassName() const {
    return "ExecutionLink";
}

char const* ExecutionQueueAbstract::ClassName() const {
    return "ExecutionQueueAbstract";
}

ClassRef<ExecutionLink> ExecutionQueueAbstract::Dispatch(ClassRef<ExecutionBit> const& bit,
                                                         ExecutionPriority priority) {
    if (!bit) {
        return {};
    }
    int const level = std::clamp(static_cast<int>(priority), 0, priorityCount - 1);
    ClassRef<ExecutionLink> item;
    try {
        item.Set(new ExecutionLink(bit, level));
        Requeue(item);
    } catch (std::bad_alloc const&) {
        return {};
    }
    Dispatched();
    return item;
}

void ExecutionQueueAbstract::Requeue(ClassRef<ExecutionLink> const& item) {
    std::lock_guard locked(mutex_);
    lists_[static_cast<unsigned>(item->Priority())].push_back(item);
}

ClassRef<ExecutionLink> ExecutionQueueAbstract::GetNextItemToSchedule() {
    unsigned long long const now = sys::scheduler::getcurrtickms();
    std::lock_guard locked(mutex_);
    for (auto list = lists_.rbegin(); list != lists_.rend(); ++list) {
        auto const due = std::find_if(list->begin(), list->end(),
                                      [now](auto const& item) { return dueTick(item) <= now; });
        if (due != list->end()) {
            ClassRef<ExecutionLink> item(*due);
            list->erase(due);
            return item;
        }
    }
    return {};
}

unsigned long long ExecutionQueueAbstract::GetFirstExecutionTick() {
    unsigned long long first = never;
    {
        std::lock_guard locked(mutex_);
        for (auto const& list : lists_) {
            for (auto const& item : list) {
                first = std::min(first, dueTick(item));
            }
        }
    }
    return first <= sys::scheduler::getcurrtickms() ? 0 : first;
}

}  // namespace core
