#include "State/Uninstall/UninstallList.h"
#include "State/Uninstall/UninstallRecords.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik::test {

TEST(UninstallList, KeepsTheGroupsThatItIsGivenAndPutsSizesIntoThem) {
    UninstallList list([] { return std::chrono::system_clock::time_point(); });
    const AppRecord draw = appRecord("Draw");
    const AppRecord write = appRecord("Write");
    const auto take = [&] { list.setApps({draw, write}, {{"made", "Made Group", {}, {draw, write}}}); };
    const auto sizeInGroup = [&] { return list.groups().at(0).apps.at(1).bundleSizeBytes; };
    take();
    EXPECT_TRUE(list.takeSizes({{write.id, write.withBundleSize(7)}}));
    ASSERT_EQ(list.groups().size(), 1U);
    EXPECT_EQ(list.groups()[0].key, "made");
    EXPECT_EQ(sizeInGroup(), 7);
    take();
    ASSERT_EQ(list.groups().size(), 1U);
    EXPECT_EQ(list.groups()[0].key, "made");
    EXPECT_EQ(sizeInGroup(), 7) << "until it is measured anew";
    EXPECT_EQ(list.apps().at(1).bundleSizeBytes, 7);
    EXPECT_FALSE(list.takeSizes({{"gone", appRecord("Gone", 5)}}));
}

}  // namespace tarvik::test
