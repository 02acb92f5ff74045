#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <unistd.h>

#include <vector>

#include "tests/core/net/SocketPair.h"

namespace {

TEST(Descriptors, OfMoreThan1024Work) {
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    if (limit.rlim_max < 1200) {
        GTEST_SKIP() << "the system allows only " << limit.rlim_max << " descriptors";
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

TEST(Descriptors, SocketsKeepOffTheStandardStreams) {
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

// In a process with a network of its own, which has nothing: no question leaves this machine.
TEST(Alone, UnknownNamesAndUnreachableAddresses) {
    int const forbidden = 8;
    auto const goodOrForbidden = [](int status) {
        return testing::ExitedWithCode(7)(status) || testing::ExitedWithCode(forbidden)(status);
    };
    EXPECT_EXIT(
        {
            if (unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0) {
                _exit(forbidden);
            }
            core::Socket socket(core::SocketDomain::IPv4, core::SocketType::stream);
            bool const unknown = socket.Connect("no-such-name.invalid|80") == 12;
            bool const unreachable = socket.Connect("10.0.0.7|80") == 30;
            _exit(unknown && unreachable ? 7 : 1);
        },
        goodOrForbidden, "");
}

}  // namespace
