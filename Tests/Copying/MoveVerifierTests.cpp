#include "Copying/MoveVerifier.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gtest/gtest.h>

#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace tarvik::test {

namespace {

/// Two equal trees.
class MoveVerifierTest : public testing::Test {
protected:
    MoveVerifierTest() {
        for (const auto& root : {source, copy}) {
            makeFile(root / "a", "12345");
            makeFile(root / "sub/.b", "x");
            makeLink(root / "link", "a");
            makeLink(root / "sub/dangling", "nowhere");
            makePipe(root / "pipe");
        }
    }

    std::string reason() { return tarvik::MoveVerifier::failureReason(world.host, source, copy).value_or("good"); }
    std::string reasonByItem() {
        return tarvik::MoveVerifier::failureReasonByItem(world.host, source, copy).value_or("good");
    }

    World world;
    fs::path source = world.folder / "Tree";
    fs::path copy = world.drive / "Copy";
};

}  // namespace

TEST_F(MoveVerifierTest, FindsNothingWrongWithAGoodCopy) {
    EXPECT_EQ(reason(), "good");
    EXPECT_EQ(reasonByItem(), "good");
}

TEST_F(MoveVerifierTest, MissesTheWholeCopy) {
    fs::remove_all(copy);
    EXPECT_EQ(reason(), "Copy is missing at the destination.");
}

TEST_F(MoveVerifierTest, ReportsAShortCountBeforeAnyItem) {
    makeFile(copy / "a", "1");
    fs::remove(copy / "sub/.b");
    EXPECT_EQ(reason(), "Tree copied with 6 of 7 entries — 1 missing.");
    EXPECT_EQ(reasonByItem(), "a copied with a different file size.");
}

TEST_F(MoveVerifierTest, PassesMoreEntriesAtTheDestination) {
    makeFile(copy / "extra", "more");
    EXPECT_EQ(reason(), "good");
}

TEST_F(MoveVerifierTest, FindsAnItemThatIsMissingThoughTheCountIsRight) {
    fs::rename(copy / "sub/.b", copy / "sub/.c");
    EXPECT_EQ(reason(), "sub/.b is missing at the destination.");
}

TEST_F(MoveVerifierTest, FindsAnotherSize) {
    makeFile(copy / "sub/.b", "xy");
    EXPECT_EQ(reason(), "sub/.b copied with a different file size.");
}

TEST_F(MoveVerifierTest, FindsAFileWhereAFolderShouldStand) {
    makeFolder(source / "folder");
    makeFile(copy / "folder");
    EXPECT_EQ(reason(), "folder is not a folder at the destination.");
}

TEST_F(MoveVerifierTest, FindsAFolderWhereAFileShouldStand) {
    makeFile(source / "file");
    makeFolder(copy / "file");
    EXPECT_EQ(reason(), "file copied with a different file size.");
}

TEST_F(MoveVerifierTest, ComparesLinkTextsAsTheyStand) {
    fs::remove(copy / "link");
    makeLink(copy / "link", "./a");
    EXPECT_EQ(reason(), "link symlink target does not match.");
}

TEST_F(MoveVerifierTest, FindsALinkThatBecameAFile) {
    fs::remove(copy / "link");
    makeFile(copy / "link", "12345");
    EXPECT_EQ(reason(), "link symlink target does not match.");
}

TEST_F(MoveVerifierTest, CountsASocketThatTheItemsPassOver) {
    makeSocket(source / "sub/socket");
    EXPECT_EQ(reason(), "Tree copied with 7 of 8 entries — 1 missing.");
    EXPECT_EQ(reasonByItem(), "good");
}

TEST_F(MoveVerifierTest, ComparesASingleFileBySizeAlone) {
    EXPECT_EQ(tarvik::MoveVerifier::failureReason(world.host, source / "a", copy / "a"), std::nullopt);
    makeFile(copy / "a", "1");
    EXPECT_EQ(tarvik::MoveVerifier::failureReason(world.host, source / "a", copy / "a"),
              "a copied with a different file size.");
}

TEST_F(MoveVerifierTest, PassesOverTheFilesInWhichAVolumeKeepsAttributes) {
    const std::string attributes("\x00\x05\x16\x07\x00\x02\x00\x00 and more", 17);
    const MoveVerifier::Volumes fromExFat{.sourceKeepsAppleDouble = true};
    makeFile(source / "._a", attributes);
    makeFile(source / "sub/._.b", attributes);
    makeFile(source / "._sub", attributes);
    EXPECT_EQ(MoveVerifier::failureReason(world.host, source, copy, fromExFat), std::nullopt);
    EXPECT_EQ(MoveVerifier::failureReasonByItem(world.host, source, copy, fromExFat), std::nullopt);
    // On every other volume they are files like any other.
    EXPECT_EQ(reason(), "Tree copied with 7 of 10 entries — 3 missing.");
    EXPECT_EQ(reasonByItem(), "._a is missing at the destination.");
}

TEST_F(MoveVerifierTest, LosesNoFileThatOnlyBearsSuchAName) {
    const MoveVerifier::Volumes fromExFat{.sourceKeepsAppleDouble = true};
    makeFile(source / "._nobody", std::string("\x00\x05\x16\x07\x00\x02\x00\x00", 8));
    EXPECT_EQ(MoveVerifier::failureReason(world.host, source, copy, fromExFat),
              "Tree copied with 7 of 8 entries — 1 missing.");
    EXPECT_EQ(MoveVerifier::failureReasonByItem(world.host, source, copy, fromExFat),
              "._nobody is missing at the destination.");
    fs::rename(source / "._nobody", source / "._a");
    makeFile(source / "._a", "a user's own words");
    EXPECT_EQ(MoveVerifier::failureReasonByItem(world.host, source, copy, fromExFat),
              "._a is missing at the destination.");
}

TEST_F(MoveVerifierTest, TakesNoAttributesForAnItemThatIsMissing) {
    const MoveVerifier::Volumes toExFat{.destinationKeepsAppleDouble = true};
    makeFile(copy / "._a", std::string("\x00\x05\x16\x07\x00\x02\x00\x00", 8));
    EXPECT_EQ(MoveVerifier::failureReason(world.host, source, copy, toExFat), std::nullopt);
    fs::remove(copy / "sub/.b");
    EXPECT_EQ(MoveVerifier::failureReason(world.host, source, copy, toExFat),
              "Tree copied with 6 of 7 entries — 1 missing.");
}

TEST_F(MoveVerifierTest, FindsTwoItemsThatHaveBecomeOne) {
    makeFile(source / "sub/Makefile", "12345");
    makeFile(source / "sub/makefile", "54321");
    makeFile(copy / "sub/Makefile", "54321");
    // As a volume shows it that takes both names for one.
    ASSERT_EQ(::link((copy / "sub/Makefile").c_str(), (copy / "sub/makefile").c_str()), 0);
    EXPECT_EQ(reasonByItem(), "Makefile and sub/makefile have one name at the destination.");
    fs::rename(source / "sub/Makefile", source / "Makefile");
    fs::rename(source / "sub/makefile", source / "makefile");
    fs::rename(copy / "sub/Makefile", copy / "Makefile");
    fs::rename(copy / "sub/makefile", copy / "makefile");
    EXPECT_EQ(reasonByItem(), "Makefile and Tree/makefile have one name at the destination.");
}

TEST_F(MoveVerifierTest, PassesHardLinksThatStayOne) {
    for (const auto& root : {source, copy}) {
        makeFile(root / "one", "12345");
        ASSERT_EQ(::link((root / "one").c_str(), (root / "ONE").c_str()), 0);
    }
    EXPECT_EQ(reason(), "good");
}

TEST_F(MoveVerifierTest, CountsNothingButFolders) {
    const fs::path isCounted = world.folder / "counted";
    world.host.tools.find = world.tool("find", "echo \"$1\" >> '" + isCounted.native() + "'");
    EXPECT_EQ(tarvik::MoveVerifier::failureReason(world.host, source / "a", copy / "a"), std::nullopt);
    EXPECT_EQ(tarvik::MoveVerifier::failureReason(world.host, source / "link", copy / "link"), std::nullopt);
    EXPECT_FALSE(fs::exists(isCounted));
    EXPECT_EQ(reason(), "good");
    EXPECT_TRUE(fs::exists(isCounted));
}

TEST_F(MoveVerifierTest, PassesAnUnknownCount) {
    world.host.tools.find = "/no/such/tool";
    EXPECT_EQ(reason(), "good");
    makeSocket(source / "socket");
    EXPECT_EQ(reason(), "good");
}

TEST_F(MoveVerifierTest, HandlesNamesInBothSpellingsOfAnAccent) {
    for (const auto& root : {source, copy}) {
        makeFile(root / "caf\xc3\xa9/one", "1");
        makeFile(root / "cafe\xcc\x81/one", "22");
    }
    EXPECT_EQ(reason(), "good");
    makeFile(copy / "cafe\xcc\x81/one", "2");
    EXPECT_EQ(reason(), "cafe\xcc\x81/one copied with a different file size.");
}

TEST_F(MoveVerifierTest, CountsNamesWithLineBreaksAlikeOnBothSides) {
    for (const auto& root : {source, copy}) makeFile(root / "two\nlines\n");
    EXPECT_EQ(reason(), "good");
}

TEST_F(MoveVerifierTest, CountsNoLineBreaksOfTheFoldersAroundTheTrees) {
    const fs::path broken = world.folder / "two\nlines/and\n";
    fs::create_directories(broken);
    fs::rename(source, broken / "Tree");
    source = broken / "Tree";
    EXPECT_EQ(reason(), "good");
    std::swap(source, copy);
    EXPECT_EQ(reason(), "good");
    fs::remove(copy / "sub/.b");
    EXPECT_EQ(reason(), "Copy copied with 6 of 7 entries — 1 missing.");
}

TEST_F(MoveVerifierTest, WalksATreeThatIsDeeperThanAPathCanSay) {
    for (const auto& root : {source, copy}) {
        const fs::path before = fs::current_path();
        fs::current_path(root);
        const std::string name(200, 'd');
        for (int level = 0; level < 60; ++level) {
            ASSERT_EQ(::mkdir(name.c_str(), 0755), 0);
            fs::current_path(name);
        }
        makeFile("bottom", root == source ? "same" : "other");
        fs::current_path(before);
    }
    EXPECT_NE(reason().find("bottom copied with a different file size."), std::string::npos);
}

namespace {

/// The copy of a source that was in use meanwhile.
class BackupProof : public MoveVerifierTest {
protected:
    std::string reason() {
        return tarvik::MoveVerifier::failureReasonSince(world.host, source, copy, start).value_or("good");
    }

    const ChangeWatch::Mark start = ChangeWatch::markUnflushed(source);
};

}  // namespace

TEST_F(BackupProof, MissesWhatWasThereAllTheTime) {
    EXPECT_EQ(reason(), "good");
    makeFile(source / "new");
    fs::remove(copy / "sub/.b");
    EXPECT_EQ(reason(), "sub/.b is missing at the destination.") << "whatever has changed beside it";
}

TEST_F(BackupProof, ComparesWhatWasThereAllTheTime) {
    makeFile(copy / "a", "1");
    EXPECT_EQ(reason(), "a copied with a different file size.");
    makeFile(copy / "a", "12345");
    fs::remove(copy / "link");
    makeFile(copy / "link");
    EXPECT_EQ(reason(), "link symlink target does not match.");
    fs::remove_all(copy / "sub");
    makeFile(copy / "sub");
    EXPECT_EQ(reason(), "link symlink target does not match.");
    fs::remove(copy / "link");
    makeLink(copy / "link", "a");
    EXPECT_EQ(reason(), "sub is not a folder at the destination.");
}

TEST_F(BackupProof, PassesWhatHasChangedSince) {
    makeFile(source / "a", "123456789");
    makeFile(source / "new/deep/file");
    fs::remove(source / "link");
    makeLink(source / "link", "elsewhere");
    fs::remove(source / "pipe");
    fs::rename(source / "sub", source / "renamed");
    makeFile(source / "sub", "a file by now");
    EXPECT_EQ(reason(), "good");
    fs::remove_all(source);
    EXPECT_EQ(reason(), "good");
}

TEST_F(BackupProof, PassesAFolderThatHasCome) {
    const fs::path elsewhere = world.folder / "Old";
    makeFile(elsewhere / "old/file");
    const auto mark = ChangeWatch::markUnflushed(source);
    fs::rename(elsewhere, source / "sub/Old");
    EXPECT_EQ(tarvik::MoveVerifier::failureReasonSince(world.host, source, copy, mark), std::nullopt)
        << "what is in it is as old as ever";
}

TEST_F(BackupProof, PassesWhatTheToolLeavesOut) {
    makeSocket(source / "sub/socket");
    makeFile(source / ".nfs folder/file");
    makeFile(source / "sub/.afpDeleted1");
    fs::remove(copy / "pipe");
    const auto mark = ChangeWatch::markUnflushed(source);
    EXPECT_EQ(tarvik::MoveVerifier::failureReasonSince(world.host, source, copy, mark), std::nullopt);
}

TEST_F(BackupProof, FindsTwoItemsThatHaveBecomeOne) {
    makeFile(source / "Makefile", "12345");
    makeFile(source / "makefile", "54321");
    makeFile(copy / "Makefile", "54321");
    ASSERT_EQ(::link((copy / "Makefile").c_str(), (copy / "makefile").c_str()), 0);
    const auto mark = ChangeWatch::markUnflushed(source);
    EXPECT_EQ(tarvik::MoveVerifier::failureReasonSince(world.host, source, copy, mark),
              "Makefile and Tree/makefile have one name at the destination.");
}

TEST_F(BackupProof, ComparesASingleFile) {
    EXPECT_EQ(tarvik::MoveVerifier::failureReasonSince(world.host, source / "a", copy / "a", start), std::nullopt);
    makeFile(copy / "a", "1");
    EXPECT_EQ(tarvik::MoveVerifier::failureReasonSince(world.host, source / "a", copy / "a", start),
              "a copied with a different file size.");
    makeFile(source / "a", "123");
    EXPECT_EQ(tarvik::MoveVerifier::failureReasonSince(world.host, source / "a", copy / "a", start), std::nullopt);
}

}  // namespace tarvik::test
