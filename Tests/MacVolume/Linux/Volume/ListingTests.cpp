#include "Platform/Files/Files.h"
#include "Platform/Files/FolderListing.h"
#include "Volume/VolumeTest.h"

namespace tarvik::test {

namespace {

class BrokenListing : public VolumeTest {
protected:
    void SetUp() override {
        VolumeTest::SetUp();
        if (!volume) return;
        for (const auto* name : {"a", "b", "c", "d"}) makeFile(at("folder") / name);
        breakListing(at("folder"));
    }

    int read(FolderListing& list) const {
        const FileDescriptor opened(::open(at("folder").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        return list.read(opened.get(), false);
    }
};

}  // namespace

TEST_F(BrokenListing, GivesSomeNamesAndThenAnError) {
    FolderListing list;
    EXPECT_EQ(read(list), EIO);
    EXPECT_EQ(list.size(), 2U);
    for (const auto* name : {"a", "b", "c", "d"}) EXPECT_TRUE(Files::itemExists(at("folder") / name));
    breakListing(at("folder"), false);
    EXPECT_EQ(read(list), 0);
    EXPECT_EQ(list.size(), 4U);
}

}  // namespace tarvik::test
