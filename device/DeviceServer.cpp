#include "device/DeviceServer.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <new>

#include "core/runtime/Thread.h"
#include "device/DeviceSession.h"
#include "sys/scheduler.h"

namespace device {

namespace {

/// Connections served at the same time. Further ones wait until one of these ends.
std::size_t const maxSessions = 64;
int const pollInterval = 50;  ///< ms between two checks for ended sessions

}  // namespace

/// A connection and its thread.
struct DeviceServer::SessionThread : core::Thread {
    enum class Progress { waiting, serving, ended };

    SessionThread(DeviceServer& itsServer, core::ClassRef<core::Socket> const& itsSocket,
                  std::string const& itsDevice)
        : Thread("session"), server(itsServer), socket(itsSocket), device(itsDevice) {}
    ~SessionThread() override { Join(); }

    void Execute() override { server.Serve(*this); }

    DeviceServer& server;
    core::ClassRef<core::Socket> socket;
    std::string const device;               ///< names of stored files begin with this
    Progress progress = Progress::waiting;  ///< guarded by the server's mutex
};

DeviceServer::DeviceServer(Behaviour& behaviour, Observer& observer, DeviceTimeouts const& timeouts,
                           UpdatePolicy const& policy)
    : ServerSocket(core::SocketType::stream),
      behaviour_(behaviour),
      observer_(observer),
      timeouts_(timeouts),
      policy_(policy) {}

DeviceServer::~DeviceServer() {
    {
        std::lock_guard const locked(mutex_);
        stop_ = true;
    }
    changed_.notify_all();
    StopListen(-1);
    sessions_.clear();
}

char const* DeviceServer::ClassName() const {
    return "DeviceServer";
}

void DeviceServer::HandleConnection(core::ClassRef<core::Socket>& socket, core::String const& bind,
                                    int) {
    while (!RemoveEndedSessions()) {
        sys::scheduler::sleepms(pollInterval);
    }
    core::String name;
    if (socket->GetSockName(name, true) != core::socket_result::success) {
        name = bind;
    }
    // Colons, as in IPv6 addresses, are not portable in file names.
    std::string const device(name.Replace("|", "-").Replace(":", ".").View());
    std::unique_lock locked(mutex_);
    SessionThread& session =
        *sessions_.emplace_back(std::make_unique<SessionThread>(*this, socket, device));
    if (!session.Start()) {
        locked.unlock();
        // Without a thread, the next connection waits for the end of this one.
        session.Execute();
    }
}

bool DeviceServer::RemoveEndedSessions() {
    std::lock_guard const locked(mutex_);
    std::erase_if(sessions_, [](auto const& session) {
        return session->progress == SessionThread::Progress::ended;
    });
    return sessions_.size() < maxSessions || stop_;
}

void DeviceServer::Serve(SessionThread& session) {
    bool const isBusy = !BeginUpdate(session);
    try {
        RunSession(session, isBusy);
    } catch (std::exception const&) {
        // At most this session and a line of the log are lost.
    }
    // Close a failed connection now: the session may be kept until the next connection.
    session.socket.Set(nullptr);
    {
        std::lock_guard const locked(mutex_);
        state_ = isBusy ? state_ : State::idle;
        session.progress = SessionThread::Progress::ended;
    }
    changed_.notify_all();
}

void DeviceServer::RunSession(SessionThread& session, bool isBusy) {
    core::Socket& socket = *session.socket;
    std::unique_ptr<Observer> busyObserver;
    if (isBusy) {
        busyObserver = observer_.CreateBusyObserver(++busySessions_);
    }
    Observer& observer = isBusy ? *busyObserver : observer_;
    UpdateResult result = UpdateResult::exhausted;
    try {
        core::String peer;
        socket.GetTarget(peer);
        observer.OnConnection(peer);
        DeviceConnection connection(socket, timeouts_, observer, stop_);
        ReceivedUpdate receivedUpdate(policy_, session.device.c_str());
        // The token is the number of the update, from 1, so that a zeroed record never matches.
        DeviceSession update(connection, behaviour_, observer, receivedUpdate,
                             isBusy ? 0 : ++updates_);
        result = isBusy ? update.RunBusy() : update.Run();
        if (!isBusy) {
            {
                std::lock_guard const locked(mutex_);
                state_ = State::closing;
            }
            changed_.notify_all();
        }
        connection.CloseGracefully();
    } catch (std::bad_alloc const&) {
        // The memory of the session is released: continue with the next one.
    }
    observer.OnEnd(result);
}

bool DeviceServer::BeginUpdate(SessionThread& session) {
    auto const isFirst = [&] {
        auto const first = std::find_if(sessions_.begin(), sessions_.end(), [](auto const& each) {
            return each->progress == SessionThread::Progress::waiting;
        });
        return first->get() == &session;
    };
    auto const deadline =
        std::chrono::steady_clock::now() + std::chrono::milliseconds(timeouts_.busy);
    std::unique_lock locked(mutex_);
    bool const isNext = changed_.wait_until(locked, deadline, [&] {
        return stop_ || (state_ != State::updating && isFirst());
    }) && !stop_;
    if (isNext) {
        changed_.wait(locked, [&] { return state_ == State::idle; });
        state_ = State::updating;
    }
    session.progress = SessionThread::Progress::serving;
    locked.unlock();
    changed_.notify_all();
    return isNext;
}

}  // namespace device
