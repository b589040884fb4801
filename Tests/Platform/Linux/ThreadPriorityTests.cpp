#include "Platform/Processes/ThreadPriority.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sys/resource.h>
#include <thread>

namespace tarvik {
namespace {

/// The larger, the more others go first. The kernel takes 0 for the calling thread.
int patience() {
    return ::getpriority(PRIO_PROCESS, 0);
}

TEST(ThreadPriority, IsLoweredForOneThreadAlone) {
    const int before = patience();
    int lowered = before;
    int stillLower = before;
    std::thread([&] {
        ThreadPriority::lower();
        ThreadPriority::lower();
        lowered = patience();
        ::setpriority(PRIO_PROCESS, 0, 19);
        ThreadPriority::lower();
        stillLower = patience();
    }).join();
    EXPECT_EQ(lowered, std::max(before, 10));
    EXPECT_EQ(stillLower, 19) << "what stands further back is not drawn forward";
    EXPECT_EQ(patience(), before);
}

}  // namespace
}  // namespace tarvik
