#include "State/EventLoop.h"
#include "State/Threads/LineStream.h"

#include <gtest/gtest.h>

#include <thread>

namespace tarvik::test {

TEST(LineStream, LosesNoLineAndKeepsTheirOrder) {
    constexpr std::size_t count = 10'000;
    LineStream::Lines received;
    std::size_t arrivals = 0;
    const LineStream stream([&](LineStream::Lines lines) {
        ++arrivals;
        for (std::string& line : lines) received.push_back(std::move(line));
    });
    std::thread sender([stream] {
        for (std::size_t number = 0; number < count; ++number) stream.send(std::to_string(number));
    });
    sender.join();
    spinUntil([&] { return received.size() == count; });
    for (std::size_t number = 0; number < count; ++number) ASSERT_EQ(received[number], std::to_string(number));
    EXPECT_EQ(arrivals, 1U) << "those that wait travel together";
    stream.send("last");
    spinUntil([&] { return received.size() == count + 1; });
}

}  // namespace tarvik::test
