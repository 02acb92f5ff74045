#include <gtest/gtest.h>

#include <cerrno>
#include <string>
#include <thread>
#include <vector>

#include "core/runtime/CountDownTimer.h"
#include "sys/scheduler.h"
#include "tests/core/net/SocketPair.h"
#include "tests/support/system.h"

namespace {

using namespace core;

TEST(Socket, RecvUntilRestartsItsTimeoutAtEachByte) {
    SocketPair pair;
    std::jthread const peer([&] {
        for (char const c : std::string("12345678")) {
            sys::scheduler::sleepms(100);
            pair.far->Send(&c, 1);
        }
    });
    char buffer[9] = {};
    EXPECT_EQ(pair.near.RecvUntil(buffer, 0, 1'000'000), 0);
    EXPECT_EQ(pair.near.RecvUntil(buffer, 8, 600), 8) << "longer in total, but not between bytes";
    EXPECT_STREQ(buffer, "12345678");
}

TEST(Socket, RecvUntilReturnsAPartialCountAtItsTimeout) {
    int const timeout = 120;
    char buffer[8];
    for (bool const closes : {false, true}) {
        SocketPair pair;
        ASSERT_EQ(pair.far->Send("123"), 3);
        if (closes) {
            pair.far->Close();
        }
        CountDownTimer timer(static_cast<unsigned long long>(timeout));
        EXPECT_EQ(pair.near.RecvUntil(buffer, 8, timeout), 3);
        EXPECT_TRUE(timer.Expired()) << "end of stream does not end the wait";
    }
    SocketPair pair;
    pair.far->Abort();
    // Wine reports a reset as the end of the stream.
    EXPECT_LT(pair.near.RecvUntil(buffer, 8, 1'000), support::onWindows() ? 1 : 0);
    pair.near.Close();
    EXPECT_EQ(pair.near.RecvUntil(buffer, 8, 20), 0);
}

TEST(Socket, ReadAndWriteHaveADeadline) {
    SocketPair pair;
    std::string const text(3'000'000, 'x');
    std::thread writer(
        [&] { EXPECT_EQ(pair.far->Write(text.data(), static_cast<int>(text.size())), 3'000'000); });
    std::vector<char> buffer(text.size());
    pair.near.SetReadTimeout(20'000);
    EXPECT_EQ(pair.near.Read(buffer.data(), 3'000'000), 3'000'000);
    writer.join();
    EXPECT_EQ(std::string(buffer.begin(), buffer.end()), text);
    pair.near.SetReadTimeout(20);
    EXPECT_EQ(pair.near.Read(buffer.data(), 1), 0);
    pair.near.SetReadTimeout(-1);
    EXPECT_EQ(pair.near.Read(buffer.data(), 1), 0);

    // With a peer that stops reading; the socket is blocking before and after.
    buffer.resize(16'000'000);
    pair.near.SetWriteTimeout(50);
    int const written = pair.near.Write(buffer.data(), 16'000'000);
    EXPECT_GT(written, 0);
    EXPECT_LT(written, 16'000'000);
    pair.near.SetRecvTimeout(30);
    CountDownTimer const timer(30ULL);
    EXPECT_EQ(pair.near.Recv(buffer.data(), 1), -1);
    EXPECT_TRUE(timer.Expired());
    EXPECT_TRUE(pair.near.getBlocking() && pair.near.setBlocking(false));
    EXPECT_FALSE(pair.near.getBlocking());
    while (pair.near.Send(buffer.data(), 1'000'000) > 0) {
    }
    EXPECT_TRUE(pair.near.WouldBlock() && !pair.near.CanSend(0));
    EXPECT_EQ(pair.near.Write(buffer.data(), 10), 0);
    EXPECT_EQ(pair.near.Send("", 0), 0);
    EXPECT_FALSE(pair.near.WouldBlock());
    pair.far->Abort();
    EXPECT_TRUE(pair.near.CanSend(10'000));
    EXPECT_EQ(pair.near.Send("x"), -1);
    EXPECT_FALSE(pair.near.WouldBlock());
    EXPECT_EQ(pair.near.Send("x"), -1) << "without a signal";
    pair.near.Close();
    EXPECT_EQ(pair.near.Write(buffer.data(), 1), -1);
}

TEST(Socket, OpensAndCloses) {
    SocketPair pair;
    String near;
    String far;
    EXPECT_TRUE(pair.near.GetTarget(far));
    EXPECT_EQ(pair.far->GetSockName(near, true), 0u);
    EXPECT_STREQ(near.getCString(), far.getCString());
    EndPoint peer;
    EXPECT_EQ(pair.near.GetPeerName(far, true) + pair.near.GetPeerName(peer), 0u);
    EXPECT_TRUE(far == near && peer.GetComposedAddress() == near);
    EXPECT_STREQ(pair.near.ClassName(), "Socket");
    EXPECT_TRUE(pair.near.Connect()) << "already open";
    EXPECT_TRUE(pair.near.IsConnected());
    char c = 0;
    EXPECT_TRUE(pair.near.ShutdownSend());
    pair.far->setBlocking(false);
    EXPECT_EQ(pair.far->Recv(&c, 1), 0);
    EXPECT_FALSE(pair.far->WouldBlock());
    EXPECT_EQ(pair.far->Send("y"), 1);
    EXPECT_EQ(pair.near.RecvUntil(&c, 1, 10'000), 1) << "only sending is shut down";
    EXPECT_EQ(pair.near.CreateTheSocket(SocketDomain::IPv4, SocketType::stream), 4u);
    EXPECT_EQ(pair.near.Close(), 0u);
    EXPECT_EQ(pair.near.Close(), 4u);
    EXPECT_FALSE(pair.near.CloseTheSocket(true));
    EXPECT_FALSE(pair.near.Abort());
    EXPECT_FALSE(pair.near.IsConnected());
    EXPECT_EQ(pair.near.Send("x"), -1);
    EXPECT_EQ(pair.near.Send(Buffer()), 0) << "nothing to send";
    EXPECT_EQ(pair.near.Connect(ClassRef<AddressInfo>()), 1u);
    EXPECT_EQ(pair.near.Connect(EndPoint()), 1u);
    EXPECT_EQ(pair.near.Bind(EndPoint()), 1u);
    EXPECT_EQ(pair.near.Connect("|"), 12u);
    EXPECT_EQ(pair.near.Bind("|"), 12u);

    // The listener is closed: the connection is refused, also by Connect().
    EXPECT_EQ(pair.near.Connect(near), 26u);
    pair.near.Close();
    EXPECT_FALSE(pair.near.Connect());
    Socket unset(SocketDomain::IPv4, SocketType::stream);
    unset.Close();
    EXPECT_FALSE(unset.Connect()) << "no target";

    SocketPair gone;
    gone.near.GetTarget(near);
    gone.far->Close();
    gone.near.Close();
    Socket next(SocketDomain::IPv4, SocketType::stream);
    EXPECT_EQ(next.Bind(near), 0u) << "the port of a closed connection";
}

TEST(Socket, SendsAndReceivesDatagrams) {
    for (char const* const any : {"127.0.0.1|0", "::1|0"}) {
        auto const domain = any[0] == ':' ? SocketDomain::IPv6 : SocketDomain::IPv4;
        Socket receiver(domain, SocketType::datagram);
        EXPECT_FALSE(receiver.IsBound());
        if (receiver.Bind(any) != 0) {
            std::puts("::1 is missing: IPv6 datagrams are not tested");
            continue;
        }
        EXPECT_TRUE(receiver.IsBound());
        EndPoint to;
        ASSERT_EQ(receiver.GetSockName(to), 0u);
        Socket sender(domain, SocketType::datagram);
        ASSERT_EQ(sender.Bind(any), 0u);
        EXPECT_EQ(sender.SendTo("text", to.GetComposedAddress()), 4);
        EXPECT_EQ(sender.SendTo(Buffer("buffer", 6), to), 6);
        sender.Send("x");
        EXPECT_NE(sender.LastError(), 0);
        EXPECT_EQ(sender.SendTo("", 0, to.GetSocketAddress()), 0);
        EXPECT_EQ(sender.LastError(), 0);
        EXPECT_EQ(sender.SendDatagram("truncated", 9, to), 9);

        Buffer bytes;
        ClassRef<EndPoint> from;
        EXPECT_EQ(receiver.RecvAllFrom(bytes, from), 4);
        EXPECT_EQ(bytes, Buffer("text", 4));
        EndPoint own;
        ASSERT_EQ(sender.GetSockName(own), 0u);
        EXPECT_TRUE(from->SameAs(own));
        String name;
        EXPECT_EQ(receiver.RecvAllFrom(bytes, name), 6);
        EXPECT_TRUE(name == own.GetComposedAddress());
        ClassRef<SocketAddr> address;
        char buffer[3];
        receiver.Send("x");
        EXPECT_NE(receiver.LastError(), 0);
        EXPECT_EQ(receiver.RecvFrom(buffer, 3, address), 0);
        EXPECT_EQ(receiver.LastError(), 0);
        EXPECT_EQ(receiver.RecvFrom(buffer, 3, name), 3);

        ASSERT_TRUE(receiver.setBlocking(false));
        EXPECT_EQ(receiver.RecvAllFrom(bytes, name), -1);
        EXPECT_TRUE(receiver.WouldBlock() && bytes.IsEmpty());
        EXPECT_EQ(sender.SendTo("x", 1, EndPoint()), -1);
    }
}

TEST(Socket, ReportsOptionsAndReadiness) {
    SocketPair pair;
    for (bool const on : {true, false, true}) {
        EXPECT_TRUE(pair.near.setTCPNoDelay(on) && pair.near.setBroadcast(on));
        EXPECT_EQ(pair.near.getTCPNoDelay(), on);
        EXPECT_EQ(pair.near.getBroadcast(), on);
    }
    pair.near.FlushSent();
    EXPECT_TRUE(pair.near.getTCPNoDelay()) << "unchanged: nothing is delayed";
    EXPECT_FALSE(pair.near.setMulticastTTL(7)) << "not for streams";
    Socket datagrams(SocketDomain::IPv4, SocketType::datagram);
    EXPECT_TRUE(datagrams.setMulticastTTL(7));
    EXPECT_EQ(datagrams.getMulticastTTL(), 7);
    EXPECT_TRUE(pair.near.SetRecvTimeout(2500));
    EXPECT_EQ(pair.near.GetRecvTimeout(), 2500);
    EXPECT_TRUE(pair.near.SetSendTimeout(60));
    EXPECT_EQ(pair.near.GetSendTimeout(), 60);
    EXPECT_FALSE(pair.near.setCorkMode(true) || pair.near.getCorkMode());
    EXPECT_EQ(pair.far->GetType(), SocketType::stream);

    EXPECT_EQ(pair.near.CheckRecv(0), Socket::Readiness::timedOut);
    EXPECT_EQ(pair.near.CheckSend(0), Socket::Readiness::ready);
    pair.near.Close();
    EXPECT_EQ(pair.near.CheckRecv(0), Socket::Readiness::timedOut);
    EXPECT_EQ(static_cast<int>(Socket::fromSelectResult(1)), 0);
    EXPECT_EQ(static_cast<int>(Socket::fromSelectResult(0)), 1);
    EXPECT_EQ(pair.near.CheckSend(1'000'000'000), Socket::Readiness::badHandle);
    EXPECT_EQ(Socket::done(), 0);
    EXPECT_TRUE(Socket::init());
    EXPECT_FALSE(pair.near.setTCPNoDelay(true) || pair.near.setBlocking(false));
    EXPECT_LT(pair.near.GetRecvTimeout(), 0);
}

TEST(SocketResult, MapsErrors) {
    int const from14[] = {ENOTCONN,     EACCES,      EADDRINUSE,   EADDRNOTAVAIL, ELOOP,
                          ENAMETOOLONG, ENOENT,      ENOTDIR,      EROFS,         EPERM,
                          EAFNOSUPPORT, EALREADY,    ECONNREFUSED, EINPROGRESS,   EINTR,
                          EISCONN,      ENETUNREACH, ETIMEDOUT,    EOPNOTSUPP,    EWOULDBLOCK,
                          ECONNABORTED, EMFILE,      ENFILE,       EPROTO};
    for (unsigned i = 0; i < std::size(from14); ++i) {
        EXPECT_EQ(SocketResultFrom_errno(from14[i], false), 14 + i);
    }
    std::pair<int, SocketResult> const rows[] = {
        {0, 0},        {ENOMEM, 6},    {EFAULT, 7},     {EBADF, 11}, {EINVAL, 11},
        {ENOBUFS, 12}, {ENOTSOCK, 13}, {ECONNRESET, 1}, {-1, 1},
    };
    for (auto const& [error, result] : rows) {
        EXPECT_EQ(SocketResultFrom_errno(error, false), result) << error;
    }
    EXPECT_EQ(SocketResultFrom_errno(0, true), 1u);
    EXPECT_EQ(SocketResultFrom_EAI(0), 0u);
    EXPECT_EQ(SocketResultFrom_EAI(123456), 1u);
}

}  // namespace
