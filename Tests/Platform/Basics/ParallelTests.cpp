#include "Platform/Basics/Parallel.h"

#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <cstddef>
#include <cstdlib>
#include <stdexcept>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

namespace tarvik {

TEST(Parallel, CallsTheBodyOnceForEachIndex) {
    for (const std::size_t threads : {0U, 1U, 8U, 200U}) {
        std::vector<std::atomic<int>> calls(100);
        inParallel(calls.size(), threads, [&](std::size_t index) { ++calls[index]; });
        for (const auto& count : calls) EXPECT_EQ(count, 1) << threads;
    }
    inParallel(0, 8, [](std::size_t) { FAIL(); });
}

TEST(Parallel, RunsAsManyAtATimeAsItMay) {
    // Each waits for the three others of its round: with fewer at a time this would never end, with more at a time the
    // count would pass four.
    std::barrier round(4);
    std::atomic<int> running = 0;
    std::atomic<int> most = 0;
    inParallel(40, 4, [&](std::size_t) {
        const int now = ++running;
        for (int seen = most; seen < now && !most.compare_exchange_weak(seen, now);) {
        }
        round.arrive_and_wait();
        --running;
        round.arrive_and_wait();
    });
    EXPECT_EQ(most, 4);
}

TEST(Parallel, ThrowsTheFailureOnAndBeginsNothingMore) {
    for (const std::size_t threads : {1U, 3U}) {
        std::atomic<std::size_t> calls = 0;
        const auto run = [&] {
            inParallel(1'000'000, threads, [&](std::size_t) {
                ++calls;
                throw std::runtime_error("enough");
            });
        };
        EXPECT_THROW(run(), std::runtime_error);
        EXPECT_LE(calls, threads);
    }
}

TEST(Parallel, GoesOnWithoutThreadsThatTheSystemRefuses) {
    const auto countWithoutThreads = [] {
        constexpr rlimit none{0, 0};
        constexpr uid_t nobody = 65534;  // No limit binds the administrator.
        if (::setrlimit(RLIMIT_NPROC, &none) != 0 || (::getuid() == 0 && ::setuid(nobody) != 0)) std::_Exit(1);
        std::atomic<int> calls = 0;
        inParallel(100, 8, [&](std::size_t) { ++calls; });
        std::_Exit(calls == 100 ? 0 : 2);
    };
    EXPECT_EXIT(countWithoutThreads(), testing::ExitedWithCode(0), "");
}

}  // namespace tarvik
