#include <gtest/gtest.h>
#include <netdb.h>
#include <pthread.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <ctime>
#include <utility>

#include "core/net/ServerSocket.h"
#include "sys/scheduler.h"
#include "tests/core/net/SocketPair.h"

namespace {

/// Sets the limit of the number of descriptors; returns the previous one.
rlim_t limitDescriptors(rlim_t count) {
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    rlim_t const before = std::exchange(limit.rlim_cur, std::min(count, limit.rlim_max));
    EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
    return before;
}

TEST(Descriptors, Above1024Work) {
    limitDescriptors(1200);
    for (int taken = 0; taken < 1030;) {
        taken = dup(0);
        if (taken < 0) {
            GTEST_SKIP() << "the system allows too few descriptors";
        }
    }
    SocketPair pair;
    EXPECT_TRUE(pair.near.CanSend(1000));
    EXPECT_EQ(pair.near.Send("12"), 2);
    char buffer[2];
    EXPECT_EQ(pair.far->RecvUntil(buffer, 2, 10'000), 2);
}

TEST(Descriptors, ServerReportsMissingResources) {
    struct Server : public core::ServerSocket {
        Server() : ServerSocket(core::SocketType::stream) { AddBind("127.0.0.1|0"); }
        void HandleConnection(core::ClassRef<core::Socket>&, core::String const&, int) override {}
    } server;
    // Start once without limits: a sanitizer needs descriptors for the first check of a type.
    ASSERT_EQ(server.StartListen(), 1);
    server.StopListen(-1);
    rlim_t const limit = limitDescriptors(0);
    EXPECT_EQ(server.StartOne(0), 35u);
    EXPECT_EQ(server.StartListen(), -1);
    EXPECT_EQ(server.LastError(), EMFILE);
    limitDescriptors(limit);

    pthread_attr_t standard;
    pthread_attr_t oversized;
    pthread_getattr_default_np(&standard);
    pthread_attr_init(&oversized);
    pthread_attr_setstacksize(&oversized, SIZE_MAX / 4 * 3);
    ASSERT_EQ(pthread_setattr_default_np(&oversized), 0);
    EXPECT_EQ(server.StartListen(), -1);
    EXPECT_EQ(server.LastError(), EAGAIN) << "no thread";
    EXPECT_TRUE(!server.IsListening() && server.GetBoundName(0).IsEmpty());
    ASSERT_EQ(pthread_setattr_default_np(&standard), 0);
    EXPECT_TRUE(server.StartListen() == 1 && server.LastError() == 0);

    // Neither a failing accept nor a failing wait spins.
    core::Socket client(core::SocketDomain::IPv4, core::SocketType::stream);
    limitDescriptors(0);
    EXPECT_EQ(client.Connect(server.GetBoundName(0)), 0u);
    for (rlim_t const few : {1U, 0U}) {
        limitDescriptors(few);
        std::clock_t const start = std::clock();
        sys::scheduler::sleepms(200);
        EXPECT_LT(std::clock() - start, CLOCKS_PER_SEC / 10) << few;
    }
    server.StopListen(-1);
    limitDescriptors(limit);
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
    int const resolver[] = {0,        EAI_SERVICE, EAI_AGAIN, EAI_BADFLAGS,
                            EAI_FAIL, EAI_FAMILY,  EAI_MEMORY};
    for (unsigned code = 0; code < std::size(resolver); ++code) {
        EXPECT_EQ(core::SocketResultFrom_EAI(resolver[code]), code);
    }
    EXPECT_EQ(core::SocketResultFrom_EAI(EAI_NONAME), 8u);
    int const waits[] = {0, 0, EBADF, EINTR, EINVAL, ENOMEM, EIO};
    for (int code = 2; code < 7; ++code) {
        errno = waits[code];
        EXPECT_EQ(static_cast<int>(core::Socket::fromSelectResult(-1)), code);
    }
}

}  // namespace
