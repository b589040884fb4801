#include "Platform/Files/Files.h"
#include "Platform/Processes/CommandRunner.h"
#include "StandIns/MadePackages.h"
#include "StandIns/StandInRun.h"
#include "Support/Mutator.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iostream>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace tarvik::test {
namespace {

using Practice::Compression;
using Practice::XarWriter;
using testing::HasSubstr;

class Xar : public testing::Test {
protected:
    Xar() { makeFolder(goal); }

    fs::path write(const std::string& bytes) const {
        makeFile(archive, bytes);
        return archive;
    }
    CommandResult list() const { return runStandIn("xar", {"-tf", archive}); }
    CommandResult extract(const std::vector<std::string>& names = {}) const {
        std::vector<std::string> arguments{"-xf", archive, "-C", goal};
        arguments.insert(arguments.end(), names.begin(), names.end());
        return runStandIn("xar", arguments);
    }
    /// Refused as a whole: nothing in the goal, nothing outside.
    void expectRefused(const XarWriter& writer, const std::string& words) const {
        write(writer.bytes());
        const std::string before = pictureOf(folder.path());
        const auto result = extract();
        EXPECT_EQ(result.status, 1);
        EXPECT_THAT(result.stderr, HasSubstr(words));
        EXPECT_EQ(pictureOf(folder.path()), before);
    }

    TemporaryFolder folder;
    const fs::path archive = folder / "a.pkg";
    const fs::path goal = folder / "goal";
};

XarWriter smallArchive() {
    XarWriter writer;
    writer.addFile("Distribution", "<d/>");
    writer.addFile("a.pkg/PackageInfo", "info", Compression::none);
    writer.addFile("a.pkg/Payload", std::string(100'000, 'p'), Compression::bzip2);
    writer.addFile("a.pkg/empty", "");
    writer.addFile("a.pkg/Bom", std::string(1000, 'b'), Compression::xz);
    writer.addLink("link", "a.pkg/Payload");
    return writer;
}

TEST_F(Xar, ListsEntriesInTheOrderOfTheTable) {
    write(smallArchive().bytes());
    const auto result = list();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.stderr, "");
    EXPECT_EQ(result.stdout, "Distribution\na.pkg\na.pkg/PackageInfo\na.pkg/Payload\na.pkg/empty\na.pkg/Bom\nlink\n");
}

TEST_F(Xar, UnpacksAllOrWhatIsNamed) {
    write(smallArchive().bytes());
    EXPECT_EQ(extract({"Distribution", "PackageInfo"}).status, 0);
    EXPECT_THAT(Files::names(goal), testing::ElementsAre("Distribution"));
    EXPECT_EQ(extract({"a.pkg/PackageInfo"}).status, 0);
    EXPECT_EQ(contentOf(goal / "a.pkg/PackageInfo"), "info");
    EXPECT_FALSE(Files::exists(goal / "a.pkg/Payload"));
    EXPECT_EQ(extract().status, 0);
    EXPECT_EQ(contentOf(goal / "link"), std::string(100'000, 'p'));
    EXPECT_EQ(contentOf(goal / "a.pkg/Bom"), std::string(1000, 'b'));
    EXPECT_EQ(contentOf(goal / "a.pkg/empty"), "");
}

TEST_F(Xar, ReadsWhatOtherProgramsWriteAndTheyReadWhatItReads) {
    const fs::path tree = folder / "tree";
    makeFile(tree / "sub/file", "some text\n");
    makeFile(tree / "empty", "");
    makeFileOfSize(tree / "large", 300'000);
    makeLink(tree / "link", "sub/file");
    makeFile(tree / "\u00E9\u4E2D", "name");
    for (const char* compression : {"gzip", "bzip2", "xz", "none"}) {
        fs::remove(archive);
        const auto made = CommandRunner::run(
            "/usr/bin/bsdtar",
            {"--format=xar", std::string("--options=compression=") + compression, "-cf", archive, "-C", tree, "."});
        ASSERT_EQ(made.status, 0) << made.stderr;
        fs::remove_all(goal);
        makeFolder(goal);
        const auto result = extract();
        ASSERT_EQ(result.status, 0) << compression << result.stderr;
        EXPECT_EQ(pictureOf(goal), pictureOf(tree)) << compression;
    }
    // What xz packs, that program does not unpack.
    XarWriter writer;
    writer.addFile("Distribution", "<d/>");
    writer.addFile("a.pkg/Payload", std::string(100'000, 'p'), Compression::bzip2);
    write(writer.bytes());
    const fs::path other = folder / "other";
    makeFolder(other);
    const auto read = CommandRunner::run("/usr/bin/7zz", {"x", "-o" + other.native(), archive});
    EXPECT_EQ(read.status, 0) << read.stdout;
    fs::remove_all(goal);
    makeFolder(goal);
    EXPECT_EQ(extract().status, 0);
    EXPECT_EQ(contentOf(other / "a.pkg/Payload"), contentOf(goal / "a.pkg/Payload"));
    EXPECT_EQ(contentOf(other / "Distribution"), "<d/>");
}

TEST_F(Xar, RefusesEntriesThatWouldLieElsewhere) {
    for (const char* path : {"../outside", "a/../../outside", "a/..", "..", "a/b/../../../x"}) {
        XarWriter writer;
        writer.addFile("good", "x");
        writer.addFile(path, "outside");
        expectRefused(writer, "lie elsewhere");
    }
    write(
        XarWriter::around("<xar><toc><checksum style=\"sha1\"><offset>0</offset><size>20</size></checksum>"
                          "<file id=\"1\"><name>/tmp/x</name><type>file</type></file></toc></xar>",
                          ""));
    EXPECT_EQ(list().stdout, "/tmp/x\n");
    EXPECT_EQ(extract().status, 1);
    EXPECT_EQ(Files::names(goal).size(), 0U);
}

TEST_F(Xar, RefusesWhatIsNoFileFolderOrLink) {
    XarWriter writer;
    writer.addOther("device", "<type>character special</type>");
    expectRefused(writer, "no file, folder or link");
    XarWriter nothing;
    nothing.addOther("nothing", "");
    expectRefused(nothing, "no file, folder or link");
}

TEST_F(Xar, NeverWritesThroughALink) {
    XarWriter own;
    own.addLink("a", folder.path());
    own.addFile("a/outside", "x");
    expectRefused(own, "through an entry that is no folder");
    // Under another name of the same entry.
    XarWriter doubled;
    doubled.addFolder("b");
    doubled.addOther("./b", "<type>symlink</type><link>" + folder.path().native() + "</link>");
    doubled.addFile("b/outside", "x");
    write(doubled.bytes());
    EXPECT_EQ(extract().status, 1);
    EXPECT_FALSE(Files::itemExists(folder / "outside"));
    // One that stands there already.
    XarWriter plain;
    plain.addFile("c/outside", "x");
    write(plain.bytes());
    makeLink(goal / "c", folder.path());
    EXPECT_EQ(extract().status, 1);
    EXPECT_FALSE(Files::itemExists(folder / "outside"));
    // A link in the place of a file is replaced, not followed.
    makeFile(folder / "victim", "safe");
    XarWriter file;
    file.addFile("d", "new");
    write(file.bytes());
    makeLink(goal / "d", folder / "victim");
    EXPECT_EQ(extract().status, 0);
    EXPECT_EQ(contentOf(folder / "victim"), "safe");
    EXPECT_EQ(contentOf(goal / "d"), "new");
}

TEST_F(Xar, MakesHardLinksOnlyToWhatIsInTheArchive) {
    XarWriter writer;
    writer.addFile("one", "same");
    writer.addHardLink("other", "one");
    write(writer.bytes());
    EXPECT_EQ(extract().status, 0);
    EXPECT_EQ(statusOf(goal / "one").st_ino, statusOf(goal / "other").st_ino);
    fs::remove_all(goal);
    makeFolder(goal);
    EXPECT_EQ(extract({"other"}).status, 0);
    EXPECT_EQ(contentOf(goal / "other"), "same");
    fs::remove(goal / "other");
    XarWriter lost;
    lost.addHardLink("other", "/etc/passwd");
    expectRefused(lost, "hard link to what is not in it");
}

TEST_F(Xar, NeverRestoresTheRightsOfOthers) {
    XarWriter writer;
    writer.addOther("tool", "<type>file</type><mode>06755</mode>");
    write(writer.bytes());
    EXPECT_EQ(extract().status, 0);
    EXPECT_EQ(statusOf(goal / "tool").st_mode & 07777, 0755U);
}

TEST_F(Xar, DoesNotBelieveSizes) {
    const std::string good = smallArchive().bytes();
    // The table unpacks to other than what the header says, or is said to be huge.
    for (const char* size : {"\0\0\0\0\x40\0\0\0", "\0\0\0\0\0\0\0\1", "\xff\xff\xff\xff\xff\xff\xff\xff"})
        for (const std::size_t at : {8U, 16U}) {
            std::string bad = good;
            bad.replace(at, 8, size, 8);
            write(bad);
            const auto result = list();
            EXPECT_EQ(result.status, 1);
            EXPECT_EQ(result.stdout, "");
        }
    // A bomb: a table of 200 MB in 200 KB, of nothing.
    write(XarWriter::around("<xar><toc>" + std::string(200'000'000, ' ') + "</toc></xar>", ""));
    EXPECT_EQ(list().status, 1);
    // An entry that says it has more bytes than there is space on any volume.
    XarWriter huge;
    huge.addOther("huge",
                  "<type>file</type><data><offset>0</offset><length>1</length><size>99999999999999999</size>"
                  "<encoding style=\"application/octet-stream\"/></data>");
    expectRefused(huge, "not enough space");
    // One whose bytes unpack to more than it says.
    XarWriter more;
    more.addFile("more", std::string(5'000'000, 'x'));
    std::string bytes = more.bytes();
    write(bytes);
    EXPECT_EQ(extract().status, 0);
}

TEST_F(Xar, FindsEveryDamage) {
    XarWriter writer;
    writer.addFile("file", "some bytes of a file", Compression::none);
    const std::string good = writer.bytes();
    int found = 0;
    for (std::size_t at = 0; at < good.size(); ++at) {
        std::string bad = good;
        bad[at] = static_cast<char>(bad[at] ^ 4);
        write(bad);
        if (extract().status == 1) {
            ++found;
        } else {
            EXPECT_EQ(contentOf(goal / "file"), "some bytes of a file") << at;
            ADD_FAILURE() << "A flipped bit was not found at " << at;
        }
    }
    EXPECT_EQ(found, static_cast<int>(good.size()));
}

TEST_F(Xar, RefusesBrokenTables) {
    for (const char* table :
         {"", "<xar>", "<xar><toc></xar>", "no xml", "<xar><toc><file><type>file</type></file></toc></xar>",
          "<!DOCTYPE x [<!ENTITY a \"aaaa\"><!ENTITY b "
          "\"&a;&a;&a;\">]><xar><toc><file><name>&b;</name></file></toc></xar>",
          "<xar><toc><checksum style=\"sha1\"><offset>-1</offset><size>20</size></checksum></toc></xar>",
          "<xar><toc><checksum style=\"sha1\"><offset>99999999</offset><size>20</size></checksum></toc></xar>",
          "<xar><toc><checksum style=\"sha1\"><offset>0</offset><size>99999999999</size></checksum></toc></xar>",
          "<xar><toc><checksum style=\"none\"/></toc></xar>", "<xar><toc/></xar>"}) {
        write(XarWriter::around(table, ""));
        const auto result = list();
        EXPECT_EQ(result.status, 1) << table;
        EXPECT_THAT(result.stderr, HasSubstr("Error opening xar archive")) << table;
    }
    std::string deep = "<xar><toc>";
    for (int level = 0; level < 10'000; ++level) deep += "<file id=\"1\"><name>a</name><type>directory</type>";
    write(XarWriter::around(deep, ""));
    EXPECT_EQ(list().status, 1);
}

TEST_F(Xar, IsNotKeptWaiting) {
    makePipe(archive);
    EXPECT_EQ(list().status, 1);
    fs::remove(archive);
    EXPECT_EQ(list().status, 1);
    makeFolder(archive);
    EXPECT_EQ(list().status, 1);
    EXPECT_EQ(runStandIn("xar", {}).status, 1);
    EXPECT_EQ(runStandIn("xar", {"-cf", archive}).status, 1);
}

}  // namespace
}  // namespace tarvik::test
