#include "Platform/Files/Files.h"
#include "Platform/Processes/CommandRunner.h"
#include "Practice/Archives/ZipWriter.h"
#include "StandIns/Linux/DittoRun.h"
#include "Support/ExtendedAttributes.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <sys/stat.h>
#include <vector>

namespace tarvik::test {
namespace {

using Practice::ZipWriter;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

DittoRun expand(const fs::path& archive, const fs::path& goal) {
    return runDitto({"-x", "-k", archive, goal});
}

void expectExpanded(const fs::path& archive, const fs::path& goal) {
    const auto run = expand(archive, goal);
    EXPECT_EQ(run.status, 0) << archive;
    EXPECT_EQ(run.message, "") << archive;
}

/// Runs a shell line in a folder.
void runIn(const fs::path& folder, const std::string& line) {
    const auto result = CommandRunner::run("/bin/sh", {"-c", "cd '" + folder.native() + "' && " + line});
    ASSERT_EQ(result.status, 0) << line << "\n" << result.stderr;
}

/// What archives have to keep: links, permissions, empty files and folders, names in several scripts.
void makeTree(const fs::path& tree) {
    makeFile(tree / "App.app/Contents/Info.plist", std::string(100'000, 'p'));
    makeFile(tree / "App.app/Contents/MacOS/App", "#!/bin/sh\n");
    makeFileOfSize(tree / "App.app/Contents/random", 300'000);
    fs::permissions(tree / "App.app/Contents/MacOS/App", fs::perms(0755));
    makeFile(tree / "App.app/empty", "");
    makeFolder(tree / "App.app/empty folder");
    makeFile(tree / "App.app/caf\xC3\xA9", "composed");
    makeFile(tree / "App.app/cafe\xCC\x81 2", "decomposed");
    makeFile(tree / "App.app/\xE6\x97\xA5\xE6\x9C\xAC", "script");
    makeFile(tree / "App.app/locked", "read only");
    fs::permissions(tree / "App.app/locked", fs::perms(0444));
    makeLink(tree / "App.app/F.framework/Versions/Current", "A");
    makeFile(tree / "App.app/F.framework/Versions/A/F", "code");
    makeLink(tree / "App.app/F.framework/F", "Versions/Current/F");
    makeLink(tree / "Applications", "/Applications");
}

TEST(DittoArchive, ReadsWhatOtherProgramsMake) {
    const TemporaryFolder folder;
    makeTree(folder / "tree");
    const std::vector<std::string> makers = {
        "zip -qry ../archive.zip .", "zip -qry0 ../archive.zip .", "zip -qry - . > ../archive.zip",
        "bsdtar --format zip -cf ../archive.zip .", "7zz a -snl ../archive.zip . > ../log"};
    for (const std::string& maker : makers) {
        runIn(folder / "tree", "rm -f ../archive.zip && " + maker);
        expectExpanded(folder / "archive.zip", folder / "goal");
        EXPECT_EQ(pictureOf(folder / "goal"), pictureOf(folder / "tree")) << maker;
        fs::remove_all(folder / "goal");
    }
}

TEST(DittoArchive, ReadsWhatPythonMakes) {
    const TemporaryFolder folder;
    makeFile(folder / "make.py",
             "import sys, zipfile\n"
             "class Pipe:\n"
             "    def __init__(self, file): self.file = file\n"
             "    def write(self, data): return self.file.write(data)\n"
             "    def flush(self): self.file.flush()\n"
             "for name, kind in ((sys.argv[1], zipfile.ZIP_STORED), (sys.argv[2], zipfile.ZIP_DEFLATED)):\n"
             "    with open(name, 'wb') as file, zipfile.ZipFile(Pipe(file), 'w', kind) as archive:\n"
             "        archive.writestr('plain', b'1' * 5000)\n"
             "        with archive.open('wide', 'w', force_zip64=True) as entry: entry.write(b'2' * 5000)\n"
             "        archive.writestr('caf\\u00e9', b'3')\n"
             "        archive.comment = b'a comment'\n");
    runIn(folder.path(), "python3 make.py stored.zip packed.zip");
    for (const char* name : {"stored.zip", "packed.zip"}) {
        expectExpanded(folder / name, folder / "goal");
        EXPECT_EQ(contentOf(folder / "goal/plain"), std::string(5000, '1'));
        EXPECT_EQ(contentOf(folder / "goal/wide"), std::string(5000, '2'));
        EXPECT_EQ(contentOf(folder / "goal/caf\xC3\xA9"), "3");
        fs::remove_all(folder / "goal");
    }
}

TEST(DittoArchive, IsMadeByTestsAsOtherProgramsReadIt) {
    const TemporaryFolder folder;
    ZipWriter()
        .addFolder("folder/")
        .add({.name = "folder/file", .content = "content", .mode = 0100755})
        .add({.name = "late", .content = "sizes behind", .hasDescriptor = true})
        .addLink("link", "folder/file")
        .writeTo(folder / "archive.zip");
    expectExpanded(folder / "archive.zip", folder / "ours");
    runIn(folder.path(),
          "unzip -q archive.zip -d unzip && 7zz x -oseven archive.zip > log && "
          "python3 -c 'import zipfile; assert zipfile.ZipFile(\"archive.zip\").testzip() is None'");
    EXPECT_EQ(pictureOf(folder / "unzip"), pictureOf(folder / "ours"));
    EXPECT_EQ(pictureOf(folder / "seven"), pictureOf(folder / "ours"));
}

TEST(DittoArchive, KeepsTimes) {
    const TemporaryFolder folder;
    makeFile(folder / "tree/folder/file");
    runIn(folder / "tree", "touch -d '2001-02-03 04:05:06 UTC' folder/file folder && zip -qry ../archive.zip .");
    expectExpanded(folder / "archive.zip", folder / "goal");
    EXPECT_EQ(statusOf(folder / "goal/folder/file").st_mtime, 981173106);
    EXPECT_EQ(statusOf(folder / "goal/folder").st_mtime, 981173106);
}

TEST(DittoArchive, ReadsNamesInCP437AndKeepsDecomposedOnes) {
    const TemporaryFolder folder;
    ZipWriter()
        .add({.name = "caf\x82", .content = "CP437"})
        .add({.name = "caf\xC3\xA9 2", .content = "UTF-8 without a flag"})
        .add({.name = "cafe\xCC\x81 3", .content = "decomposed", .flags = 1U << 11U})
        .writeTo(folder / "archive.zip");
    expectExpanded(folder / "archive.zip", folder / "goal");
    EXPECT_THAT(Files::names(folder / "goal"), ElementsAre("cafe\xCC\x81 3", "caf\xC3\xA9", "caf\xC3\xA9 2"));
}

/// Big numbers first, as RFC 1740 has them.
std::string highFirst(std::uint32_t value, int count) {
    const std::string low = Practice::lowFirst(value, count);
    return {low.rbegin(), low.rend()};
}

/// A file of attributes as a Mac writes it: Finder information with a list behind it, and a resource fork.
std::string attributeFile(const std::string& name, const std::string& value, const std::string& fork) {
    constexpr std::uint32_t infoAt = 26 + 24;
    const std::string entryHead = name + '\0';
    const std::uint32_t entryLength = (11 + static_cast<std::uint32_t>(entryHead.size()) + 3) / 4 * 4;
    const std::uint32_t dataAt = infoAt + 34 + 36 + entryLength;
    const std::uint32_t forkAt = dataAt + static_cast<std::uint32_t>(value.size());
    std::string bytes = highFirst(0x00051607, 4) + highFirst(0x00020000, 4) + std::string("Mac OS X        ") +
                        highFirst(2, 2) + highFirst(9, 4) + highFirst(infoAt, 4) + highFirst(forkAt - infoAt, 4) +
                        highFirst(2, 4) + highFirst(forkAt, 4) + highFirst(static_cast<std::uint32_t>(fork.size()), 4);
    bytes += "TEXTttxt" + std::string(26, '\0');
    bytes += "ATTR" + std::string(4, '\0') + highFirst(forkAt, 4) + highFirst(dataAt, 4) +
             highFirst(static_cast<std::uint32_t>(value.size()), 4) + std::string(14, '\0') + highFirst(1, 2);
    bytes += highFirst(dataAt, 4) + highFirst(static_cast<std::uint32_t>(value.size()), 4) + highFirst(0, 2) +
             highFirst(static_cast<std::uint32_t>(entryHead.size()), 1) + entryHead;
    bytes.resize(dataAt, '\0');
    return bytes + value + fork;
}

TEST(DittoArchive, GivesAttributesFromTheirFilesToTheItems) {
    const TemporaryFolder folder;
    const std::string attributes = attributeFile("com.apple.quarantine", "0081;x", "fork");
    ZipWriter()
        .add({.name = "folder/file"})
        .add({.name = "__MACOSX/folder/._file", .content = attributes})
        .add({.name = "__MACOSX/._late", .content = attributes})
        .add({.name = "late"})
        .add({.name = "beside"})
        .add({.name = "._beside", .content = attributes})
        .add({.name = "__MACOSX/._none", .content = attributes})
        .add({.name = "._text", .content = "no attributes"})
        .writeTo(folder / "archive.zip");
    expectExpanded(folder / "archive.zip", folder / "goal");
    for (const char* name : {"folder/file", "late", "beside"}) {
        EXPECT_EQ(attributeOf(folder / "goal" / name, "user.com.apple.quarantine"), "0081;x") << name;
        EXPECT_EQ(attributeOf(folder / "goal" / name, "user.com.apple.ResourceFork"), "fork") << name;
        EXPECT_EQ(attributeOf(folder / "goal" / name, "user.com.apple.FinderInfo").substr(0, 8), "TEXTttxt") << name;
    }
    EXPECT_THAT(Files::names(folder / "goal"), ElementsAre("._none", "._text", "beside", "folder", "late"));
}

TEST(DittoArchive, PassesOverWhatIsBrokenInFilesOfAttributes) {
    const TemporaryFolder folder;
    const std::string whole = attributeFile("com.apple.quarantine", "0081;x", "fork");
    ZipWriter archive;
    archive.add({.name = "file"});
    for (std::size_t length = 8; length < whole.size(); ++length)
        archive.add({.name = "__MACOSX/._file", .content = whole.substr(0, length)});
    for (std::size_t at = 16; at < whole.size(); ++at) {
        std::string broken = whole;
        broken[at] = static_cast<char>(0xFF);
        archive.add({.name = "__MACOSX/._file", .content = broken});
    }
    archive.writeTo(folder / "archive.zip");
    EXPECT_LE(expand(folder / "archive.zip", folder / "goal").status, 1);
    EXPECT_TRUE(Files::itemExists(folder / "goal/file"));
}

TEST(DittoArchive, SaysWhatIsNoArchive) {
    const TemporaryFolder folder;
    makeFile(folder / "text.zip", "text");
    makeFile(folder / "empty.zip", "");
    for (const char* name : {"text.zip", "empty.zip"}) {
        const auto run = expand(folder / name, folder / "goal");
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.message, "ditto: Couldn't read PKZip signature\n");
    }
    EXPECT_FALSE(Files::itemExists(folder / "goal"));
    EXPECT_EQ(expand(folder / "none.zip", folder / "goal").message,
              "ditto: " + (folder / "none.zip").native() + ": No such file or directory\n");
}

TEST(DittoArchive, EndsWithTheFirstEntryThatIsBrokenOrEncrypted) {
    const TemporaryFolder folder;
    std::string bytes = ZipWriter()
                            .add({.name = "first", .content = "whole"})
                            .add({.name = "second", .content = "the broken one"})
                            .add({.name = "third"})
                            .bytes();
    bytes[bytes.find("broken")] = 'B';
    makeFile(folder / "broken.zip", bytes);
    const auto run = expand(folder / "broken.zip", folder / "goal");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.message, HasSubstr((folder / "goal/second").native() + ": "));
    EXPECT_EQ(contentOf(folder / "goal/first"), "whole");
    EXPECT_FALSE(Files::itemExists(folder / "goal/third"));

    makeFile(folder / "tree/file");
    runIn(folder / "tree", "zip -qP secret ../secret.zip file && 7zz a -pword ../strong.zip file > ../log");
    for (const char* name : {"secret.zip", "strong.zip"}) {
        const auto refused = expand(folder / name, folder / "of-secrets");
        EXPECT_EQ(refused.status, 1) << name;
        EXPECT_THAT(refused.message, HasSubstr("file: Operation not permitted")) << name;
        EXPECT_THAT(Files::names(folder / "of-secrets"), IsEmpty()) << name;
    }
}

TEST(DittoArchive, RefusesLinksAndFilesOfAttributesThatClaimTooMuchBeforeItReadsThem) {
    const TemporaryFolder folder;
    ZipWriter()
        .add({.name = "link", .content = "to", .mode = 0120777, .claimedSize = 4096})
        .writeTo(folder / "link.zip");
    EXPECT_THAT(expand(folder / "link.zip", folder / "goal").message, HasSubstr("link: File name too long"));
    constexpr std::uint32_t most = 64U << 20U;
    ZipWriter().add({.name = "__MACOSX/._file", .claimedSize = most + 1}).writeTo(folder / "attributes.zip");
    EXPECT_THAT(expand(folder / "attributes.zip", folder / "goal").message, HasSubstr("._file: File too large"));
}

TEST(DittoArchive, FailsOnACutArchive) {
    const TemporaryFolder folder;
    const std::string bytes = ZipWriter().add({.name = "file", .content = std::string(1000, 'x')}).bytes();
    for (const std::size_t length : {bytes.size() - 1, bytes.size() - 30, std::size_t{500}, std::size_t{10}}) {
        makeFile(folder / "cut.zip", bytes.substr(0, length));
        EXPECT_EQ(expand(folder / "cut.zip", folder / "goal").status, 1) << length;
    }
}

/// Nothing may count on the tool where Tarvik has not looked: this is why it looks.
TEST(DittoArchive, GoesWhereverNamesLead) {
    const TemporaryFolder folder;
    const fs::path goal = folder / "deep/goal";
    ZipWriter().add({.name = "../evil"}).writeTo(folder / "climbing.zip");
    expectExpanded(folder / "climbing.zip", goal);
    EXPECT_TRUE(Files::itemExists(folder / "deep/evil"));
    ZipWriter().addLink("link", "../..").add({.name = "link/through"}).writeTo(folder / "through.zip");
    expectExpanded(folder / "through.zip", goal);
    EXPECT_TRUE(Files::itemExists(folder / "through"));
    ZipWriter().add({.name = "/absolute"}).writeTo(folder / "absolute.zip");
    expectExpanded(folder / "absolute.zip", goal);
    EXPECT_TRUE(Files::itemExists(goal / "absolute")) << "the one exception";
}

TEST(DittoArchive, PutsFilesInThePlaceOfWhatIsNone) {
    const TemporaryFolder folder;
    const std::string attributes = attributeFile("com.apple.quarantine", "0081;x", "fork");
    makeFile(folder / "victim", "untouched");
    ZipWriter()
        .addLink("over", "../victim")
        .add({.name = "over", .content = "new"})
        .addLink("._over", "../victim")
        .add({.name = "._over", .content = "no attributes"})
        .addLink("._x", "../victim")
        .add({.name = "__MACOSX/._x", .content = attributes})
        .writeTo(folder / "archive.zip");
    makePipe(folder / "goal/over");
    expectExpanded(folder / "archive.zip", folder / "goal");
    EXPECT_EQ(contentOf(folder / "victim"), "untouched");
    EXPECT_EQ(contentOf(folder / "goal/over"), "new");
    EXPECT_EQ(contentOf(folder / "goal/._over"), "no attributes");
    EXPECT_EQ(contentOf(folder / "goal/._x"), attributes);
    for (const char* name : {"over", "._over", "._x"})
        EXPECT_TRUE(S_ISREG(statusOf(folder / "goal" / name).st_mode)) << name;
}

TEST(DittoArchive, MakesNoDevicesAndKeepsSetIdsForTheSuperuserAlone) {
    const TemporaryFolder folder;
    ZipWriter()
        .add({.name = "device", .mode = 0020666})
        .add({.name = "pipe", .mode = 0010666})
        .add({.name = "setuid", .mode = 0104755})
        .writeTo(folder / "archive.zip");
    fs::permissions(folder.path(), fs::perms(0777));
    const auto run = runDitto({"-x", "-k", folder / "archive.zip", folder / "goal"}, [] {
        if (isSuperuser()) becomeNobody();
    });
    EXPECT_EQ(run.message, "");
    EXPECT_THAT(Files::names(folder / "goal"), ElementsAre("setuid"));
    EXPECT_EQ(statusOf(folder / "goal/setuid").st_mode & 07777U, 0755U);
}

TEST(DittoArchive, SaysThatTheDiskIsFull) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TemporaryFolder folder;
    const RealVolume volume = RealVolume::memory(folder.path(), megabyte);
    ZipWriter().add({.name = "large", .content = std::string(3'000'000, 'x')}).writeTo(folder / "archive.zip");
    const auto run = expand(folder / "archive.zip", volume / "goal");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.message, "ditto: " + (volume / "goal/large").native() + ": No space left on device\n");
}

TEST(DittoArchive, MergesIntoWhatIsThere) {
    const TemporaryFolder folder;
    makeFile(folder / "goal/kept");
    makeFile(folder / "goal/replaced", "old and longer");
    makeLink(folder / "goal/link", "nowhere");
    ZipWriter().add({.name = "replaced", .content = "new"}).addLink("link", "kept").writeTo(folder / "archive.zip");
    expectExpanded(folder / "archive.zip", folder / "goal");
    EXPECT_EQ(contentOf(folder / "goal/replaced"), "new");
    EXPECT_EQ(contentOf(folder / "goal/link"), "content");
}

}  // namespace
}  // namespace tarvik::test
