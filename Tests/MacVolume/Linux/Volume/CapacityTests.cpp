#include "Platform/Files/FileSystemStatus.h"
#include "Support/MacAttributes.h"
#include "Volume/VolumeTest.h"

namespace tarvik::test {

namespace {

class Capacity : public VolumeTest {
protected:
    std::optional<std::string> important() const { return attributeOf(folder.path(), MacAttribute::importantCapacity); }
};

}  // namespace

TEST_F(Capacity, ForImportantUsageIsToldWhereTheVolumeKnowsIt) {
    EXPECT_GT(std::stoll(important().value()), 0);
    volume->set(MacVolume::Habit::tellsOneCapacity, true);
    EXPECT_EQ(important(), "0");
    EXPECT_GT(fileSystemStatus(folder.path())->availableBytes, 0) << "as the volume list of a Mac has it";
}

TEST_F(Capacity, IsNoneWhereThereIsNoRoom) {
    volume->set(MacVolume::Habit::hasNoRoom, true);
    EXPECT_EQ(important(), "0");
    EXPECT_EQ(fileSystemStatus(folder.path())->availableBytes, 0);
}

TEST_F(Capacity, IsToldWithTheFormat) {
    const auto format = [&] { return attributeOf(folder.path(), MacAttribute::format); };
    EXPECT_EQ(format(), "APFS");
    volume->set(MacVolume::Habit::exchangesNoNames, true);
    EXPECT_EQ(format(), "HFS+");
    volume->set(MacVolume::Habit::isExFat, true);
    EXPECT_EQ(format(), "exFAT");
}

}  // namespace tarvik::test
