#include <gtest/gtest.h>
#include <netdb.h>
#include <pthread.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>
#include <vector>

#include "core/net/ServerSocket.h"
#include "sys/scheduler.h"
#include "tests/core/net/SocketPair.h"

namespace {

TEST(Descriptors, Above1024Work) {
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    if (limit.rlim_max < 1200) {
        GTEST_SKIP() << "the limit is " << limit.rlim_max << " descriptors";
    }
    limit.rlim_cur = 1200;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
    std::vector<int> taken;
    while (taken.empty() || taken.back() < 1030) {
        taken.push_back(dup(0));
        ASSERT_GE(taken.back(), 0);
    }
    {
        SocketPair pair;
        EXPECT_TRUE(pair.near.CanSend(1000));
        EXPECT_EQ(pair.near.Send("12"), 2);
        char buffer[2];
        EXPECT_EQ(pair.far->RecvUntil(buffer, 2, 10'000), 2);
    }
    for (int const descriptor : taken) {
        close(descriptor);
    }
}

TEST(Descriptors, ServerReportsMissingResources) {
    struct Server : public core::ServerSocket {
        Server() : ServerSocket(core::SocketType::stream) { AddBind("127.0.0.1|0"); }
        void HandleConnection(core::ClassRef<core::Socket>&, core::String const&, int) override {}
    } server;
    // Start once without limits: a sanitizer needs descriptors for the first check of a type.
    ASSERT_EQ(server.StartListen(), 1);
    server.StopListen(-1);
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    rlimit const none{0, limit.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    EXPECT_EQ(server.StartOne(0), 35u);
    EXPECT_EQ(server.StartListen(), -1);
    EXPECT_EQ(server.LastError(), EMFILE);
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);

    pthread_attr_t standard;
    pthread_attr_t oversized;
    pthread_getattr_default_np(&standard);
    pthread_attr_init(&oversized);
    pthread_attr_setstacksize(&oversized, std::size_t{1} << 50);
    ASSERT_EQ(pthread_setattr_default_np(&oversized), 0);
    EXPECT_EQ(server.StartListen(), -1);
    EXPECT_EQ(server.LastError(), EAGAIN) << "no thread";
    EXPECT_TRUE(!server.IsListening() && server.GetBoundName(0).IsEmpty());
    ASSERT_EQ(pthread_setattr_default_np(&standard), 0);
    EXPECT_EQ(server.StartListen(), 1);
    EXPECT_EQ(server.LastError(), 0);

    // Neither a failing accept nor a failing wait spins.
    core::Socket client(core::SocketDomain::IPv4, core::SocketType::stream);
    EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    EXPECT_EQ(client.Connect(server.GetBoundName(0)), 0u);
    for (rlim_t const few : {1U, 0U}) {
        rlimit const descriptors{few, limit.rlim_max};
        EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &descriptors), 0);
        std::clock_t const start = std::clock();
        sys::scheduler::sleepms(200);
        EXPECT_LT(std::clock() - start, CLOCKS_PER_SEC / 10) << few;
    }
    server.StopListen(-1);
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
}

TEST(Descriptors, SocketsAvoidTheStandardStreams) {
    int const kept = dup(0);
    close(0);
    {
        SocketPair pair;
        EXPECT_EQ(dup(kept), 0) << "0 is still free";
    }
    close(kept);
}

TEST(Signals, DoNotEndAWait) {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    sigaction(SIGALRM, &action, nullptr);
    itimerval const every5ms{{0, 5000}, {0, 5000}};
    itimerval const never{};
    SocketPair pair;
    setitimer(ITIMER_REAL, &every5ms, nullptr);
    char buffer[2];
    EXPECT_EQ(pair.near.checkRecv(100), 0);
    EXPECT_EQ(pair.near.RecvUntil(buffer, 2, 100), 0);
    EXPECT_EQ(pair.far->Send("12"), 2);
    EXPECT_EQ(pair.near.RecvUntil(buffer, 2, 10'000), 2);
    setitimer(ITIMER_REAL, &never, nullptr);
}

TEST(SocketResult, MapsResolverAndWaitErrors) {
    int const resolver[] = {0, 0, EAI_AGAIN, EAI_BADFLAGS, EAI_FAIL, EAI_FAMILY, EAI_MEMORY};
    for (unsigned code = 2; code < std::size(resolver); ++code) {
        EXPECT_EQ(core::SocketResultFrom_EAI(resolver[code]), code);
    }
    EXPECT_EQ(core::SocketResultFrom_EAI(EAI_NONAME), 8u);
    EXPECT_EQ(core::SocketResultFrom_EAI(EAI_SERVICE), 1u);
    int const waits[] = {0, 0, EBADF, EINTR, EINVAL, ENOMEM, EIO};
    for (int code = 2; code < 7; ++code) {
        errno = waits[code];
        EXPECT_EQ(static_cast<int>(core::Socket::fromSelectResult(-1)), code);
    }
}

}  // namespace
