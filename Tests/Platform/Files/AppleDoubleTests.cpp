#include "Platform/Files/AppleDouble.h"
#include "Platform/Files/FileDescriptor.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <string>

namespace tarvik::test {

namespace {

/// The beginning of a file as a Mac writes it on exFAT: magic number, version, its own name for the writer, one entry.
const std::string recorded = std::string("\x00\x05\x16\x07\x00\x02\x00\x00", 8) + "Mac OS X        " +
                             std::string("\x00\x02\x00\x00\x00\x09", 6);

class AppleDoubleFiles : public testing::Test {
protected:
    bool belongs(const char* name) const {
        const FileDescriptor handle(::open(folder.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        return AppleDouble::belongsToItem(handle.get(), name);
    }

    const TemporaryFolder folder;
};

}  // namespace

TEST(AppleDouble, IsNamedAfterItsItem) {
    EXPECT_EQ(AppleDouble::ownerName("._song.mp3"), "song.mp3");
    EXPECT_EQ(AppleDouble::ownerName("._._x"), "._x");
    for (const char* name : {"", ".", "._", "._.", "._..", ".song", "_song", "song", "a._b"})
        EXPECT_EQ(AppleDouble::ownerName(name), std::nullopt) << name;
}

TEST(AppleDouble, IsKnownByItsFirstBytes) {
    EXPECT_TRUE(AppleDouble::isHeader(recorded));
    EXPECT_FALSE(AppleDouble::isHeader(recorded.substr(0, 7)));
    EXPECT_FALSE(AppleDouble::isHeader(std::string("\x00\x05\x16\x00\x00\x02\x00\x00", 8)));  // AppleSingle
    EXPECT_FALSE(AppleDouble::isHeader("notes of a user"));
}

TEST_F(AppleDoubleFiles, BelongToTheItemBesideThem) {
    makeFile(folder / "song");
    makeFile(folder / "._song", recorded);
    makeFolder(folder / "Album");
    makeFile(folder / "._Album", recorded);
    EXPECT_TRUE(belongs("._song"));
    EXPECT_TRUE(belongs("._Album"));
    EXPECT_FALSE(belongs("song"));
    EXPECT_EQ(AppleDouble::countIn(folder.path()), 2);
}

TEST_F(AppleDoubleFiles, WithoutAnItemAreItems) {
    makeFile(folder / "._gone", recorded);
    EXPECT_FALSE(belongs("._gone"));
}

TEST_F(AppleDoubleFiles, AreNothingElseOfSuchAName) {
    makeFile(folder / "song");
    makeFile(folder / "._song", "my own words about the song");
    EXPECT_FALSE(belongs("._song"));
    makeFile(folder / "other");
    makeFolder(folder / "._other");
    EXPECT_FALSE(belongs("._other"));
    makeFile(folder / "third");
    makePipe(folder / "._third");
    EXPECT_FALSE(belongs("._third"));
    EXPECT_EQ(AppleDouble::countIn(folder.path()), 0);
}

}  // namespace tarvik::test
