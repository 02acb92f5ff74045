#pragma once

#include <array>
#include <atomic>
#include <deque>
#include <limits>
#include <mutex>

#include "core/object/BasicClass.h"
#include "core/object/ClassRef.h"
#include "core/runtime/ExecutionBit.h"

namespace core {

/// Handle to a dispatched bit, to cancel it or query its state from any thread.
class ExecutionLink : public BasicClass {
public:
    ExecutionLink(ClassRef<ExecutionBit> const& bit, int priority)
        : bit_(bit), priority_(priority) {}

    char const* ClassName() const override;

    ClassRef<ExecutionBit> const& Bit() const { return bit_; }
    int Priority() const { return priority_; }

    /// Prevents further runs of the bit; a run in progress continues to its end.
    void Cancel() { cancelled_ = true; }
    bool IsCancelled() const { return cancelled_; }
    /// Whether the bit will not run again.
    bool IsDone() const { return done_; }
    /// Marks the bit as done; for the queue.
    void SetDone() { done_ = true; }

private:
    ClassRef<ExecutionBit> const bit_;
    int const priority_;
    std::atomic<bool> cancelled_ = false;
    std::atomic<bool> done_ = false;
};

/// A work queue with five priorities. Any thread may dispatch; the derived class decides how items
/// are taken and where they run.
class ExecutionQueueAbstract : public BasicClass {
public:
    enum ExecutionPriority { lowest, low, normal, high, highest };
    static constexpr int priorityCount = highest + 1;

    /// The first execution tick of an empty queue.
    static constexpr unsigned long long never = std::numeric_limits<unsigned long long>::max();

    char const* ClassName() const override;

    /// Queues the bit after those of the same priority; a priority out of range is clamped. Returns
    /// its link, or an empty reference if the bit is empty or memory is exhausted.
    ClassRef<ExecutionLink> Dispatch(ClassRef<ExecutionBit> const& bit, ExecutionPriority priority);

    /// Removes and returns the first due item of the highest priority that has one; an empty
    /// reference if no item is due. An item is due from its not-before tick on.
    ClassRef<ExecutionLink> GetNextItemToSchedule();
    /// Runs an item returned by GetNextItemToSchedule, or passes it to the thread that runs it.
    virtual void ScheduleItem(ClassRef<ExecutionLink> const& item, unsigned long long now) = 0;
    /// Returns the earliest not-before tick of all items: 0 if one is due, never if the queue is
    /// empty.
    unsigned long long GetFirstExecutionTick();

protected:
    /// Queues an item again, after those of the same priority.
    void Requeue(ClassRef<ExecutionLink> const& item);
    /// Called at the end of every Dispatch, on the caller's thread.
    virtual void Dispatched() = 0;

private:
    std::mutex mutex_;
    std::array<std::deque<ClassRef<ExecutionLink>>, priorityCount> lists_;
};

}  // namespace core
