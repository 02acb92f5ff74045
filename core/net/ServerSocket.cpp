#include "core/net/ServerSocket.h"

#include <algorithm>
#include <cerrno>
#include <new>
#include <utility>

#include "core/net/Address.h"
#include "core/net/InfoSocketAddr.h"
#include "core/runtime/CountDownTimer.h"
#include "sys/scheduler.h"

namespace core {

namespace {

int const listenTimeout = 2000;  ///< ms for a worker to start listening, on a loaded computer
int const stopPollInterval = 5;  ///< ms between two checks for workers that have ended

}  // namespace

ServerSocket::ServerSocket(SocketType type) : type_(type) {}

ServerSocket::~ServerSocket() {
    StopListen(-1);
}

char const* ServerSocket::ClassName() const {
    return "ServerSocket";
}

int ServerSocket::AddBind(String const& text) {
    if (count_ == maxBinds) {
        return -1;
    }
    slots_[static_cast<unsigned>(count_)].bind = text;
    return count_++;
}

int ServerSocket::AddBind(IPv4Address const& address) {
    return AddBind(address.GetAsString(true));
}

String ServerSocket::GetBind(int index) const {
    return InUse(index) ? slots_[static_cast<unsigned>(index)].bind : String();
}

int ServerSocket::RemoveBind(int index) {
    if (!InUse(index)) {
        return -1;
    }
    if (slots_[static_cast<unsigned>(index)].worker) {
        return -2;
    }
    auto const removed = slots_.begin() + index;
    std::move(removed + 1, slots_.begin() + count_, removed);
    slots_[static_cast<unsigned>(count_ - 1)] = Slot();
    NumberWorkers();
    count_ = std::min(count_ + 1, maxBinds);
    return 0;
}

void ServerSocket::ClearBinds() {
    auto const end =
        std::remove_if(slots_.begin(), slots_.end(), [](Slot const& slot) { return !slot.worker; });
    std::for_each(end, slots_.end(), [](Slot& slot) { slot = Slot(); });
    count_ = static_cast<int>(end - slots_.begin());
    NumberWorkers();
}

void ServerSocket::NumberWorkers() {
    for (int i = 0; i < count_; ++i) {
        if (Slot const& slot = slots_[static_cast<unsigned>(i)]; slot.worker) {
            slot.worker->SetIndex(i);
        }
    }
}

String ServerSocket::GetBoundName(int index) const {
    return InUse(index) ? slots_[static_cast<unsigned>(index)].bound : String();
}

int ServerSocket::StartListen() {
    if (count_ == 0) {
        lastError_ = EINVAL;
        return -1;
    }
    lastError_ = 0;
    if (IsListening()) {
        return 0;
    }
    int started = 0;
    int firstError = 0;
    for (int i = 0; i < count_; ++i) {
        if (StartOne(i) == socket_result::success) {
            ++started;
        } else if (firstError == 0) {
            firstError = lastError_;
        }
    }
    lastError_ = firstError;
    return started > 0 ? started : -1;
}

SocketResult ServerSocket::StartOne(int index) {
    if (!InUse(index)) {
        return Fail(EINVAL, socket_result::invalid);
    }
    if (slots_[static_cast<unsigned>(index)].worker) {
        return Fail(EALREADY, socket_result::wrongState);
    }
    lastError_ = 0;
    try {
        return Serve(index);
    } catch (std::bad_alloc const&) {
        return Fail(ENOMEM, SocketResultFrom_errno(ENOMEM, true));
    }
}

SocketResult ServerSocket::Fail(int error, SocketResult result) {
    lastError_ = error;
    return result;
}

SocketResult ServerSocket::Serve(int index) {
    Slot& slot = slots_[static_cast<unsigned>(index)];
    ClassRef<AddressInfo> info;
    if (!slot.bind.IsEmpty()) {
        info = Address::GetInfo(slot.bind, type_, false);
    }
    if (!info) {
        return Fail(EADDRNOTAVAIL, socket_result::noAddress);
    }
    ClassRef<Socket> const socket(new Socket(info->GetSocketAddress()->GetDomain(), type_));
    if (int const error = socket->LastError(); error != 0) {
        return Fail(error, SocketResultFrom_errno(error, true));
    }
    if (SocketResult const bound = socket->Bind(info); bound != socket_result::success) {
        return Fail(socket->LastError(), bound);
    }
    String name;
    if (SocketResult const named = socket->GetSockName(name, true);
        named != socket_result::success) {
        return Fail(EADDRNOTAVAIL, named);
    }
    auto worker = std::make_unique<ServerSocketThread>(*this, socket, index);
    if (!worker->Start()) {
        int const error = errno;
        return Fail(error, SocketResultFrom_errno(error, true));
    }
    slot.worker = std::move(worker);
    slot.bound = name;
    // Clients can connect as soon as the caller knows the bound address. A worker that cannot
    // listen within the timeout keeps trying.
    slot.worker->WaitUntilReady(listenTimeout);
    return socket_result::success;
}

bool ServerSocket::IsListening() const {
    for (Slot const& slot : slots_) {
        if (slot.worker) {
            return true;
        }
    }
    return false;
}

bool ServerSocket::Terminated(int index) const {
    return !InUse(index) || !slots_[static_cast<unsigned>(index)].worker ||
           slots_[static_cast<unsigned>(index)].worker->IsTerminated();
}

void ServerSocket::StopListen(long long timeoutMs) {
    StopRange(0, maxBinds, timeoutMs);
}

void ServerSocket::StopOne(int index, long long timeoutMs) {
    if (InUse(index)) {
        StopRange(index, index + 1, timeoutMs);
    }
}

void ServerSocket::StopRange(int first, int last, long long timeoutMs) {
    for (int i = first; i < last; ++i) {
        if (Slot& slot = slots_[static_cast<unsigned>(i)]; slot.worker) {
            slot.worker->RequestTermination();
        }
    }
    CountDownTimer timer(timeoutMs < 0 ? 0 : static_cast<unsigned long long>(timeoutMs));
    while (!ReapFinished(first, last)) {
        if (timeoutMs >= 0 && timer.Expired()) {
            return;
        }
        sys::scheduler::sleepms(stopPollInterval);
    }
}

bool ServerSocket::ReapFinished(int first, int last) {
    bool all = true;
    for (int i = first; i < last; ++i) {
        Slot& slot = slots_[static_cast<unsigned>(i)];
        if (slot.worker && !slot.worker->IsTerminated()) {
            all = false;
        } else if (slot.worker) {
            slot.worker.reset();
            slot.bound.Clear();
        }
    }
    return all;
}

void ServerSocket::DoAccept(ClassRef<Socket>& accepted, int index) {
    Handle(accepted, GetBind(index), index);
}

}  // namespace core
