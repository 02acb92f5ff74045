#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <ctime>
#include <thread>
#include <tuple>
#include <vector>

#include "core/net/ServerSocket.h"
#include "core/runtime/CountDownTimer.h"
#include "sys/scheduler.h"
#include "tests/core/net/SocketPair.h"
#include "tests/support/PrintText.h"
#include "tests/support/system.h"

namespace {

using namespace core;

class EchoServer : public ServerSocket {
public:
    explicit EchoServer(SocketType type = SocketType::stream) : ServerSocket(type) {}
    ~EchoServer() override {
        hold = false;
        StopListen(-1);
    }

    std::atomic<int> handled = 0;
    std::atomic<bool> hold = false;  ///< makes handlers wait
    std::atomic<int> throws = 0;     ///< number of handler calls to fail
    std::atomic<int> index = -1;     ///< of the last connection
    void (*finish)(ClassRef<Socket>& socket) = [](ClassRef<Socket>&) {};

protected:
    void HandleConnection(ClassRef<Socket>& socket, String const& bind, int at) override {
        EXPECT_STREQ(bind.getCString(), "127.0.0.1|0");
        index = at;
        while (hold) {
            sys::scheduler::sleepms(1);
        }
        if (throws > 0) {
            --throws;
            throw "neither memory nor an exception class";
        }
        bool const isStream = socket->GetType() == SocketType::stream;
        char c = 0;
        while (isStream && socket->Recv(&c, 1) == 1) {
            socket->Send(&c, 1);
        }
        Buffer bytes;
        ClassRef<EndPoint> from;
        if (!isStream && socket->RecvAllFrom(bytes, from) > 0) {
            socket->SendTo(bytes, *from);
        }
        finish(socket);
        ++handled;
    }
};

bool echoes(String const& address) {
    Socket client(SocketDomain::IPv4, SocketType::stream);
    char c = 0;
    return client.Connect(address) == 0 && client.Send("x") == 1 && client.Recv(&c, 1) == 1 &&
           c == 'x';
}

TEST(ServerSocket, RestartsAfterAStopUnderTraffic) {
    long const before = support::openDescriptors();
    std::atomic<int> echoed = 0;
    {
        EchoServer server;
        EXPECT_EQ(server.StartListen(), -1) << "no addresses";
        for (int i = 0; i < ServerSocket::maxBinds; ++i) {
            EXPECT_EQ(server.AddBind("127.0.0.1|0"), i);
        }
        EXPECT_EQ(server.AddBind("127.0.0.1|0"), -1);
        for (int round = 1; round <= 2; ++round) {
            EXPECT_EQ(server.StartListen(), 32);
            EXPECT_TRUE(server.StartListen() == 0 && server.IsListening());
            std::vector<std::jthread> clients;
            for (int i = 0; i < ServerSocket::maxBinds; ++i) {
                String address = server.GetBoundName(i);
                address.Unique();
                clients.emplace_back([&echoed, own = std::move(address)] {
                    while (echoes(own)) {
                        ++echoed;
                    }
                });
            }
            while (echoed < 1000 * round) {
                sys::scheduler::sleepms(1);
            }
            server.StopListen(10'000);
            EXPECT_FALSE(server.IsListening());
            clients.clear();
            EXPECT_GE(server.handled, echoed);
        }
    }
    EXPECT_EQ(support::openDescriptors(), before);
}

TEST(ServerSocket, ServesDatagrams) {
    void (*const finishes[])(ClassRef<Socket>&) = {
        [](ClassRef<Socket>&) {}, [](ClassRef<Socket>& socket) { socket->Close(); },
        [](ClassRef<Socket>& socket) { socket.Set(nullptr); }};
    EchoServer none;
    ServerSocketThread worker(none, nullptr, 7);
    EXPECT_STREQ(none.ServerSocket::ClassName(), "ServerSocket");
    EXPECT_STREQ(worker.ClassName(), "ServerSocketThread");
    EXPECT_STREQ(worker.Thread::ClassName(), "Thread");
    ASSERT_TRUE(worker.IsTerminated() && worker.Start() && !worker.Start());
    EXPECT_EQ(errno, EALREADY);
    for (auto const finish : finishes) {
        EchoServer server(SocketType::datagram);
        server.finish = finish;
        server.AddBind("127.0.0.1|0");
        ASSERT_EQ(server.StartListen(), 1);
        Socket client(SocketDomain::IPv4, SocketType::datagram);
        char buffer[5] = {};
        String from;
        server.throws = 1;
        EXPECT_EQ(client.SendTo("echo", server.GetBoundName(0)), 4);
        ASSERT_TRUE(client.CanRecv(10'000) && client.RecvFrom(buffer, 4, from) == 4);
        EXPECT_STREQ(buffer, "echo");
        EXPECT_EQ(from, server.GetBoundName(0));
        // Workers without a socket wait: they neither spin nor end.
        std::clock_t const start = std::clock();
        sys::scheduler::sleepms(200);
        EXPECT_TRUE(support::onWindows() || std::clock() - start < CLOCKS_PER_SEC / 10);
        EXPECT_FALSE(server.Terminated(0) || worker.IsTerminated());
        server.StopListen(10'000);
        EXPECT_FALSE(server.IsListening());
    }
}

TEST(ServerSocket, RemovingABindRaisesTheCount) {
    EchoServer server;
    for (int const count : {3, ServerSocket::maxBinds}) {
        server.ClearBinds();
        for (int i = 0; i < count; ++i) {
            server.AddBind(String::format("%1").argi(1, i));
        }
        EXPECT_TRUE(server.GetBind(-1).IsEmpty() && server.GetBoundName(-1).IsEmpty());
        EXPECT_EQ(server.RemoveBind(-1) + server.RemoveBind(count), -2);
        EXPECT_EQ(server.RemoveBind(1), 0);
        EXPECT_EQ(server.BindsCount(), std::min(count + 1, ServerSocket::maxBinds));
        for (int i = 0; i < server.BindsCount(); ++i) {
            String const expected = String::format("%1").argi(1, i < 1 ? i : i + 1);
            EXPECT_TRUE(server.GetBind(i) == (i < count - 1 ? expected : String())) << i;
        }
    }
    server.ClearBinds();
    for (char const* const bind : {"first", "second", "127.0.0.1|0", "last"}) {
        server.AddBind(bind);
    }
    ASSERT_TRUE(server.StartOne(2) == 0 && server.LastError() == 0);
    EXPECT_EQ(server.RemoveBind(2), -2);
    String const bound = server.GetBoundName(2);
    EXPECT_EQ(server.RemoveBind(0), 0);
    EXPECT_TRUE(server.GetBoundName(1) == bound && echoes(bound) && server.index == 1);
    server.ClearBinds();
    EXPECT_EQ(server.BindsCount(), 1);
    EXPECT_EQ(server.RemoveBind(server.AddBind("another")), 0);
    EXPECT_TRUE(server.GetBind(2).IsEmpty());
    EXPECT_TRUE(server.GetBoundName(0) == bound && echoes(bound) && server.index == 0);
    server.StopOne(0, 10'000);
    EXPECT_TRUE(server.GetBoundName(0).IsEmpty() && !server.GetBind(0).IsEmpty());
    server.ClearBinds();
    EXPECT_TRUE(server.BindsCount() == 0 && server.AddBind("127.0.0.1|0") == 0);

    SocketPair pair;
    pair.near.Send("x");
    pair.near.ShutdownSend();
    server.DoAccept(pair.far, 0);
    char c = 0;
    EXPECT_EQ(pair.near.Recv(&c, 1), 1) << "handled on this thread";
}

TEST(ServerSocket, ServesOtherAddressesIfOneIsInUse) {
    EchoServer first;
    first.AddBind("127.0.0.1|0");
    ASSERT_EQ(first.StartListen(), 1);
    String const taken = first.GetBoundName(0);

    EchoServer second;
    second.AddBind(taken);
    second.AddBind("127.0.0.1|0");
    second.AddBind("");
    EXPECT_EQ(second.StartListen(), 1);
    EXPECT_EQ(second.LastError(), EADDRINUSE) << "the first error";
    EXPECT_TRUE(second.Terminated(0) && !second.Terminated(1));
    EXPECT_TRUE(second.StartListen() == 0 && second.LastError() == 0);
    for (auto const& [index, result, error] : {std::tuple{0, 16u, EADDRINUSE},
                                               {1, 4u, EALREADY},
                                               {2, 12u, EADDRNOTAVAIL},
                                               {7, 11u, EINVAL},
                                               {-1, 11u, EINVAL}}) {
        EXPECT_TRUE(second.StartOne(index) == result && second.LastError() == error) << index;
    }
    CountDownTimer const pause(40ULL);
    second.throws = 1;
    EXPECT_FALSE(echoes(second.GetBoundName(1))) << "a failing handler loses its connection";
    EXPECT_TRUE(echoes(second.GetBoundName(1)) && pause.Expired());
    EXPECT_TRUE(echoes(taken));
}

TEST(ServerSocket, StopTimesOutOnABusyHandler) {
    EchoServer server;
    server.AddBind("127.0.0.1|0");
    ASSERT_EQ(server.StartListen(), 1);
    server.hold = true;
    Socket client(SocketDomain::IPv4, SocketType::stream);
    ASSERT_EQ(client.Connect(server.GetBoundName(0)), 0u);
    while (server.index < 0) {
        sys::scheduler::sleepms(1);
    }
    server.StopListen(20);
    EXPECT_TRUE(server.IsListening());
    client.Close();
    server.hold = false;
    server.StopOne(0, 10'000);
    EXPECT_TRUE(!server.IsListening() && server.handled == 1);
}

}  // namespace
