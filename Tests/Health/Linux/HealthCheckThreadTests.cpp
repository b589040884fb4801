// The check where the system gives no more threads.
#include "Health/HealthCheck.h"
#include "Health/HealthWorld.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <pthread.h>
#include <stdexcept>
#include <system_error>
#include <thread>

namespace tarvik {

namespace {

/// While it lives, no thread can be started: each would take a stack that is larger than any memory.
class NoThreads {
public:
    NoThreads() {
        pthread_getattr_default_np(&m_usual);
        pthread_attr_t vast;
        pthread_getattr_default_np(&vast);
        pthread_attr_setstacksize(&vast, std::size_t{1} << 47U);
        if (pthread_setattr_default_np(&vast) != 0) throw std::runtime_error("threads cannot be forbidden");
        pthread_attr_destroy(&vast);
    }
    ~NoThreads() {
        pthread_setattr_default_np(&m_usual);
        pthread_attr_destroy(&m_usual);
    }
    NoThreads(const NoThreads&) = delete;
    NoThreads& operator=(const NoThreads&) = delete;

private:
    pthread_attr_t m_usual{};
};

}  // namespace

TEST(HealthCheckWithoutThreads, FindsTheSameAndCanBeCancelled) {
    test::HealthWorld world;
    world.moveApp("A.app");
    const fs::path asked = world.folder / "asked";
    world.host.tools.codesign = world.tool("codesign", "touch '" + asked.native() + "'; exec sleep 100");
    const Cancellation cancellation;
    std::thread user([&] {
        EXPECT_TRUE(test::comesToStand(asked));
        cancellation.cancel();
    });
    const auto start = std::chrono::steady_clock::now();
    {
        const NoThreads none;
        ASSERT_THROW(std::thread([] {}).join(), std::system_error);
        const auto report =
            HealthCheck::run(world.host, HealthCheck::applicationRoots(world.host), {.cancellation = cancellation});
        EXPECT_THAT(test::kindsAndNames(report.issues), testing::ElementsAre("healthy A.app"));
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20)) << "the tool's own limit";
    user.join();
}

}  // namespace tarvik
