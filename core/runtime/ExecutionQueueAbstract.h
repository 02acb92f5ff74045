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

/// Work that waits to be done, in five lists by priority. Any thread may dispatch; who takes the
/// items and where they run is the derived class's affair.
class ExecutionQueueAbstract : public BasicClass {
public:
    enum ExecutionPriority { lowest, low, normal, high, highest };
    static constexpr int priorityCount = highest + 1;

    /// The first execution tick of an empty queue.
    static constexpr unsigned long long never = std::numeric_limits<unsigned long long>::max();

    char const* ClassName() const override;

    /// Queues the bit behind those of the same priority; a priority outside the five counts as
    /// the nearest. Returns its link, or an empty reference for an empty bit or if memory is
    /// exhausted.
    ClassRef<ExecutionLink> Dispatch(ClassRef<ExecutionBit> const& bit, ExecutionPriority priority);

    /// Takes out the first item whose not-before tick has come, of the highest priority that has
    /// one; empty when there is none.
    ClassRef<ExecutionLink> GetNextItemToSchedule();
    /// Runs an item that was taken out, or hands it to whoever runs it.
    virtual void ScheduleItem(ClassRef<ExecutionLink> const& item, unsigned long long now) = 0;
    /// The earliest not-before tick of all items: 0 when one is due at once, never when the queue
    /// is empty.
    unsigned long long GetFirstExecutionTick();

protected:
    /// Puts an item back, behind those of the same priority.
    void Requeue(ClassRef<ExecutionLink> const& item);
    /// Called after every Dispatch, on the thread of whoever dispatched.
    virtual void Dispatched() = 0;

private:
    std::mutex mutex_;
    std::array<std::deque<ClassRef<ExecutionLink>>, priorityCount> lists_;
};

}  // namespace core
