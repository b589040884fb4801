#include "Platform/Files/Files.h"
#include "Volume/VolumeTest.h"

#include <string>
#include <sys/file.h>
#include <vector>

namespace tarvik::test {

namespace {

constexpr auto composed = "R\u00E9sum\u00E9.app";
constexpr auto decomposed = "Re\u0301sume\u0301.app";

using Names = std::vector<std::string>;

class FoldedNames : public VolumeTest {
protected:
    void SetUp() override {
        VolumeTest::SetUp();
        if (volume) volume->set(MacVolume::Habit::foldsNames, true);
    }
};

}  // namespace

TEST_F(FoldedNames, LeadToOneItemHoweverTheyAreWritten) {
    makeFile(at(composed) / "Contents/Info.plist", "list");
    for (const fs::path name : {decomposed, "r\u00E9SUM\u00C9.APP", "RE\u0301SUME\u0301.app"}) {
        EXPECT_TRUE(Files::isSameItem(Files::info(at(name)), Files::info(at(composed)))) << name;
        EXPECT_EQ(contentOf(at(name) / "CONTENTS/info.PLIST"), "list") << name;
    }
    EXPECT_FALSE(Files::itemExists(at("Resume.app")));
    volume->set(MacVolume::Habit::foldsNames, false);
    EXPECT_FALSE(Files::itemExists(at(decomposed)));
}

TEST_F(FoldedNames, AreTakenByAnyOfThem) {
    makeFolder(at(composed));
    EXPECT_EQ(addition(at(decomposed)), EEXIST);
    EXPECT_EQ(opening(at("R\u00C9SUM\u00C9.APP"), O_WRONLY | O_CREAT | O_EXCL), EEXIST);
    makeFolder(at("other"));
    EXPECT_EQ(renaming(at("other"), at(decomposed), RENAME_NOREPLACE), EEXIST);
    EXPECT_EQ(Files::names(folder.path()), (Names{composed, "other"}));
}

TEST_F(FoldedNames, StayAsTheyWereFirstWritten) {
    makeFile(at("Foo.txt"), "first");
    makeFile(at("foo.TXT"), "second");
    EXPECT_EQ(Files::names(folder.path()), Names{"Foo.txt"});
    EXPECT_EQ(contentOf(at("Foo.txt")), "second");
    makeFile(at("new"), "third");
    EXPECT_EQ(renaming(at("NEW"), at("FOO.txt")), 0);
    EXPECT_EQ(Files::names(folder.path()).size(), 1U);
    EXPECT_EQ(contentOf(at("foo.txt")), "third");
}

TEST_F(FoldedNames, ChangeTheirSpellingByARename) {
    makeFile(at("foo.app/inside"), "here");
    EXPECT_EQ(renaming(at("foo.app"), at("Foo.app")), 0);
    EXPECT_EQ(Files::names(folder.path()), Names{"Foo.app"});
    EXPECT_EQ(contentOf(at("foo.app/inside")), "here");
    EXPECT_EQ(renaming(at("Foo.app"), at("fOO.app"), RENAME_NOREPLACE), EEXIST) << "the item is there already";
}

TEST_F(FoldedNames, AreListedAsTheyWereMadeOrDecomposed) {
    makeFile(at(composed));
    EXPECT_EQ(Files::names(folder.path()), Names{composed});
    volume->set(MacVolume::Habit::decomposesNames, true);
    EXPECT_EQ(Files::names(folder.path()), Names{decomposed});
    // What HFS+ leaves alone, though Unicode decomposes it.
    makeFile(at("2126 \u2126, f900 \uF900"));
    EXPECT_EQ(Files::names(folder.path()).front(), "2126 \u2126, f900 \uF900");
}

TEST_F(FoldedNames, MustBeText) {
    EXPECT_EQ(addition(at("bad \xFF")), EILSEQ);
    volume->set(MacVolume::Habit::foldsNames, false);
    EXPECT_EQ(addition(at("bad \xFF")), 0);
}

TEST_F(FoldedNames, ShareTheLocksOfTheirFile) {
    makeFile(at("File"));
    const FileDescriptor one(::open(at("File").c_str(), O_RDONLY | O_CLOEXEC));
    const FileDescriptor other(::open(at("FILE").c_str(), O_RDONLY | O_CLOEXEC));
    EXPECT_EQ(errorOf(::flock(one.get(), LOCK_EX | LOCK_NB)), 0);
    EXPECT_EQ(errorOf(::flock(other.get(), LOCK_EX | LOCK_NB)), EWOULDBLOCK);
}

}  // namespace tarvik::test
