#pragma once

#include <array>
#include <deque>
#include <limits>
#include <mutex>

#include "core/object/BasicClass.h"
#include "core/object/ClassRef.h"
#include "core/runtime/ExecutionBit.h"
#include "core/runtime/ExecutionLink.h"

namespace core {

/// A work queue with five priorities. Any thread may dispatch; the derived class decides how items
/// are taken and where they run.
class ExecutionQueueAbstract : public BasicClass {
public:
    enum ExecutionPriority { lowest, low, normal, high, highest };
    static constexpr int priorityCount = highest + 1;

    /// The first execution tick of an empty queue.
    static constexpr unsigned long long never = std::numeric_limits<unsigned long long>::max();

    char const* ClassName() const override;

    /// Queues the bit after those of the same priority; a priority outside the five counts as
    /// the nearest. Returns its link, or an empty reference for an empty bit or if memory is
    /// exhausted.
    ClassRef<ExecutionLink> Dispatch(ClassRef<ExecutionBit> const& bit, ExecutionPriority priority);

    /// Takes out the first item whose not-before tick has come, of the highest priority that has
    /// one; empty when there is none.
    ClassRef<ExecutionLink> GetNextItemToSchedule();
    /// Runs an item that was taken out, or passes it to the thread that runs it.
    virtual void ScheduleItem(ClassRef<ExecutionLink> const& item, unsigned long long now) = 0;
    /// The earliest not-before tick of all items: 0 when one is due at once, never when the queue
    /// is empty.
    unsigned long long GetFirstExecutionTick();

protected:
    /// Puts an item back, after those of the same priority.
    void Requeue(ClassRef<ExecutionLink> const& item);
    /// Called after every Dispatch, on the thread that called it.
    virtual void Dispatched() = 0;

private:
    std::mutex mutex_;
    std::array<std::deque<ClassRef<ExecutionLink>>, priorityCount> lists_;
};

}  // namespace core
