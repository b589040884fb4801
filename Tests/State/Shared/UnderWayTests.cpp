#include "State/Shared/UnderWay.h"

#include <gtest/gtest.h>

#include <utility>

namespace tarvik::test {

namespace {

class UnderWayTest : public testing::Test {
protected:
    int changes = 0;
    UnderWay underWay{[this] { ++changes; }};
};

}  // namespace

TEST_F(UnderWayTest, IsNothingAtFirst) {
    EXPECT_FALSE(underWay.isBusy());
    EXPECT_FALSE(underWay.isPreparing());
    EXPECT_FALSE(underWay.closingQuestion());
}

TEST_F(UnderWayTest, IsGivenUpWithoutAQuestionWhileItIsPrepared) {
    {
        const auto preparing = underWay.prepare();
        EXPECT_TRUE(underWay.isBusy());
        EXPECT_TRUE(underWay.isPreparing());
        EXPECT_FALSE(underWay.closingQuestion());
        EXPECT_EQ(changes, 1);
    }
    EXPECT_FALSE(underWay.isBusy());
    EXPECT_EQ(changes, 2);
}

TEST_F(UnderWayTest, IsAskedAboutOnceItHasBegun) {
    const Dialog question{"Quit?", "", {"Quit", "Cancel"}};
    UnderWay::Hold act = underWay.act(question);
    EXPECT_TRUE(underWay.isBusy());
    EXPECT_FALSE(underWay.isPreparing());
    EXPECT_EQ(underWay.closingQuestion(), question);
    UnderWay::Hold moved = std::move(act);
    act.reset();
    EXPECT_TRUE(underWay.isBusy()) << "somebody else holds it";
    moved.reset();
    EXPECT_FALSE(underWay.isBusy());
    EXPECT_FALSE(underWay.closingQuestion());
    EXPECT_EQ(changes, 2);
}

}  // namespace tarvik::test
