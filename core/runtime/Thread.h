#pragma once

#include <atomic>
#include <thread>

#include "core/object/BasicClass.h"
#include "core/text/String.h"

namespace core {

/// A thread of execution; a derived class implements Execute. A termination request only sets a
/// flag, which Execute must poll. The destructor of a derived class must request termination and
/// join, because Execute uses the derived object.
class Thread : public BasicClass {
public:
    /// The name is shown by debuggers and system tools, which may truncate it.
    explicit Thread(String const& name = String());
    Thread(Thread const&) = delete;
    Thread& operator=(Thread const&) = delete;
    ~Thread() override;

    char const* ClassName() const override;

    /// Starts Execute on a new thread. On failure returns false and sets errno: EALREADY if
    /// started before, else the error of the operating system.
    bool Start();
    /// Sets the termination flag; from any thread.
    void RequestTermination();
    bool IsTerminationRequested() const { return terminationRequested_; }
    /// Whether Execute has returned or was never started.
    bool IsTerminated() const { return !running_; }
    /// Waits until Execute has returned.
    void Join();

protected:
    virtual void Execute() = 0;

private:
    String const name_;
    std::thread thread_;
    std::atomic<bool> terminationRequested_ = false;
    std::atomic<bool> running_ = false;
};

}  // namespace core
