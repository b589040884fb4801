#include "Platform/Processes/ThreadPriority.h"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <thread>

namespace tarvik {
namespace {

/// The larger, the more others go first. The kernel takes 0 for the calling thread.
int patience() {
    return ::getpriority(PRIO_PROCESS, 0);
}

TEST(ThreadPriority, IsLoweredForOneThreadAlone) {
    constexpr int most = 19;
    const int before = patience();
    if (before == most) GTEST_SKIP() << "These tests run as patiently as anything can.";
    int lowered = before;
    std::thread([&] {
        ThreadPriority::lower();
        ThreadPriority::lower();
        lowered = patience();
    }).join();
    EXPECT_GT(lowered, before);
    EXPECT_EQ(patience(), before);
}

}  // namespace
}  // namespace tarvik
