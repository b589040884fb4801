#include "Platform/Basics/Failure.h"
#include "State/EventLoop.h"
#include "State/Threads/Background.h"
#include "State/Threads/NewestValue.h"
#include "State/Threads/SizeAsync.h"
#include "State/Threads/TaskGroup.h"
#include "State/Threads/UiThread.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>

namespace tarvik::test {

namespace {

/// Gives back what a coroutine has given, with the event loop running meanwhile.
template <typename Result>
Result resultOf(QCoro::Task<Result> task) {
    std::optional<Result> result;
    const auto keep = [](QCoro::Task<Result> running, std::optional<Result>& goal) -> QCoro::Task<> {
        goal = co_await running;
    };
    keep(std::move(task), result);
    spinUntil([&] { return result.has_value(); });
    return std::move(*result);
}

}  // namespace

TEST(InBackground, RunsElsewhereAndGoesOnHere) {
    const auto here = std::this_thread::get_id();
    std::thread::id there;
    std::thread::id after;
    const auto flow = [&]() -> QCoro::Task<> {
        const auto threadId = [] { return std::this_thread::get_id(); };
        there = co_await inBackground(Priority::userInitiated, threadId);
        after = std::this_thread::get_id();
    };
    flow();
    spinUntil([&] { return after != std::thread::id(); });
    EXPECT_NE(there, here);
    EXPECT_EQ(after, here);
}

TEST(InBackground, CarriesAnExceptionToTheOneWhoWaits) {
    std::string caught;
    const auto flow = [&]() -> QCoro::Task<> {
        const auto fail = [] { throw Failure("Test", 1, "It went wrong."); };
        try {
            co_await inBackground(Priority::utility, fail);
        } catch (const Failure& failure) {
            caught = failure.description();
        }
    };
    flow();
    spinUntil([&] { return !caught.empty(); });
    EXPECT_EQ(caught, "It went wrong.");
}

TEST(InBackground, GivesWhatCanOnlyBeMoved) {
    const auto make = [] { return std::make_unique<int>(7); };
    const auto made = resultOf(inBackground(Priority::utility, make));
    EXPECT_EQ(*made, 7);
}

TEST(InBackground, RunsManyAtOnce) {
    int sum = 0;
    int ended = 0;
    const auto flow = [&](int number) -> QCoro::Task<> {
        const auto priority = number % 2 == 0 ? Priority::userInitiated : Priority::utility;
        const auto give = [number] { return number; };
        sum += co_await inBackground(priority, give);
        ++ended;
    };
    for (int number = 1; number <= 200; ++number) flow(number);
    spinUntil([&] { return ended == 200; });
    EXPECT_EQ(sum, 20100);
}

TEST(SizeAsync, MeasuresInTheBackground) {
    World world;
    makeFileOfSize(world.home / "Music/song", 100'000);
    const auto size = resultOf(sizeAsync(world.host, world.home / "Music", Priority::utility));
    EXPECT_GE(size, 100'000);
    EXPECT_LT(size, 120'000);
}

TEST(SizeAsync, EndsEarlyWhenItIsCancelled) {
    World world;
    makeFileOfSize(world.home / "Music/song", 100'000);
    const Cancellation cancellation;
    cancellation.cancel();
    EXPECT_LT(resultOf(sizeAsync(world.host, world.home / "Music", Priority::utility, cancellation)), 100'000);
}

TEST(UiThread, RunsWhatIsPostedInOrder) {
    std::vector<int> order;
    std::thread other([&] {
        for (int number = 0; number < 100; ++number) UiThread::post([&order, number] { order.push_back(number); });
    });
    spinUntil([&] { return order.size() == 100; });
    other.join();
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST(UiThread, RunsNothingOnItsOwnWhileSomebodyBlocks) {
    bool hasRun = false;
    UiThread::post([&] { hasRun = true; });
    EXPECT_FALSE(hasRun);
    UiThread::runUntil([&] { return hasRun; });
    spinOnce();
}

TEST(NewestValue, ReplacesWhatHasNotBeenTaken) {
    std::vector<int> received;
    const NewestValue<int> stream([&](const int& value) { received.push_back(value); });
    for (int value = 1; value <= 1000; ++value) stream.send(value);
    spinOnce();
    EXPECT_EQ(received, std::vector<int>{1000});
    stream.send(7);
    spinOnce();
    EXPECT_EQ(received, (std::vector<int>{1000, 7}));
}

TEST(TaskGroup, WaitsForItsFlowsWithoutTheEventLoop) {
    bool hasEnded = false;
    {
        TaskGroup flows([](const std::exception&) {});
        const auto flow = [&]() -> QCoro::Task<> {
            const auto nothing = [] {};
            co_await inBackground(Priority::utility, nothing);
            co_await inBackground(Priority::userInitiated, nothing);
            hasEnded = true;
        };
        flows.add(flow());
        EXPECT_FALSE(flows.isEmpty());
        flows.waitForAll();
        EXPECT_TRUE(flows.isEmpty());
    }
    EXPECT_TRUE(hasEnded);
}

TEST(TaskGroup, TellsItsOwnerWhatAFlowHasThrown) {
    std::string told;
    TaskGroup flows([&](const std::exception& failure) { told = failure.what(); });
    const auto flow = []() -> QCoro::Task<> {
        throw Failure("Test", 1, "No.");
        co_return;
    };
    flows.add(flow());
    EXPECT_EQ(told, "No.");
    EXPECT_TRUE(flows.isEmpty());
}

}  // namespace tarvik::test
