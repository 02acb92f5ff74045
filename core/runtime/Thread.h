#pragma once

#include <atomic>
#include <thread>

#include "core/object/BasicClass.h"
#include "core/text/String.h"

namespace core {

/// A thread of execution: a derived class says in Execute what it does. It ends by its own doing:
/// a termination request is only a flag that Execute looks at.
/// A derived class requests termination and joins in its destructor, while Execute still has an
/// object to run on.
class Thread : public BasicClass {
public:
    /// The name is shown by debuggers and system tools, which cut it to what they have room for.
    explicit Thread(String const& name = String());
    Thread(Thread const&) = delete;
    Thread& operator=(Thread const&) = delete;
    ~Thread() override;

    char const* ClassName() const override;

    /// Starts Execute on a thread of its own. On failure returns false and sets errno: EALREADY if
    /// it was started before, else the reason why the system starts no further thread.
    bool Start();
    /// Asks the thread to end; from any thread.
    void RequestTermination();
    bool IsTerminationRequested() const { return terminationRequested_; }
    /// Whether Execute has come to its end, or was never started.
    bool IsTerminated() const { return !running_; }
    /// Waits until Execute has ended.
    void Join();
    String const& Name() const { return name_; }

protected:
    virtual void Execute() = 0;

private:
    String const name_;
    std::thread thread_;
    std::atomic<bool> terminationRequested_ = false;
    std::atomic<bool> running_ = false;
};

}  // namespace core
