#include "Installers/Opening/ZipCheck.h"
#include "Practice/Archives/ZipWriter.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

namespace tarvik::test {
namespace {

using Practice::ZipWriter;

ZipCheck checkOfBytes(const std::string& bytes) {
    const TemporaryFolder folder;
    makeFile(folder / "archive.zip", bytes);
    return ZipCheck::of(folder / "archive.zip");
}

bool isUnsafe(const ZipWriter& archive) {
    return checkOfBytes(archive.bytes()).isUnsafe;
}

/// A single file, and otherwise what every archive has.
bool isUnsafe(const ZipWriter::Entry& entry) {
    return isUnsafe(ZipWriter().addFolder("App.app/").add({.name = "App.app/first"}).add(entry).add({.name = "last"}));
}

TEST(ZipCheck, FindsNoFaultWithOrdinaryArchives) {
    ZipWriter archive;
    archive.addFolder("App.app/").add({.name = "App.app/Contents/Info.plist", .content = "<plist/>"});
    archive.addLink("App.app/Contents/Frameworks/F.framework/Versions/Current", "A");
    archive.add({.name = "App.app/Contents/Frameworks/F.framework/Versions/A/F", .content = "code"});
    archive.addLink("Applications", "/Applications");
    archive.add({.name = "...", .content = "dots"}).add({.name = "a..b/c..", .content = "dots"});
    archive.add({.name = "./here//twice", .content = "said in vain"});
    archive.add({.name = "dir\\file", .system = 0});
    archive.add({.name = "__MACOSX/App.app/Contents/._Info.plist", .content = "attributes"});
    archive.add({.name = "__MACOSX/._Applications", .content = "attributes of a link"});
    const ZipCheck check = checkOfBytes(archive.bytes());
    EXPECT_FALSE(check.isUnsafe);
    EXPECT_EQ(check.unpackedSize, 8 + 1 + 4 + 13 + 4 + 4 + 12 + 10 + 20);
}

TEST(ZipCheck, TakesAnEmptyArchiveAndWhatIsNoneForSafe) {
    EXPECT_FALSE(isUnsafe(ZipWriter()));
    EXPECT_EQ(checkOfBytes(""), ZipCheck());
    EXPECT_EQ(checkOfBytes("PK"), ZipCheck());
    EXPECT_EQ(checkOfBytes(std::string(100'000, 'P')), ZipCheck());
    const TemporaryFolder folder;
    EXPECT_EQ(ZipCheck::of(folder / "none"), ZipCheck());
    EXPECT_EQ(ZipCheck::of(folder.path()), ZipCheck());
    makePipe(folder / "pipe");
    EXPECT_EQ(ZipCheck::of(folder / "pipe"), ZipCheck());
}

TEST(ZipCheck, FindsNamesThatLeadOut) {
    for (const std::string name : {"/etc/passwd", "../evil", "a/../../evil", "a/..", "..", "App.app/../x", "\\evil",
                                   "a\\..\\..\\evil", "a/..\\evil", "__MACOSX/._..", "__MACOSX/a/._..", "a/._.."})
        EXPECT_TRUE(isUnsafe({.name = name})) << name;
    EXPECT_TRUE(isUnsafe({.name = std::string("a\0/b", 4)}));
}

TEST(ZipCheck, FindsPathsThroughALinkInAnyOrder) {
    const ZipWriter::Entry below{.name = "link/evil"};
    EXPECT_TRUE(isUnsafe(ZipWriter().addLink("link", "/tmp").add(below)));
    EXPECT_TRUE(isUnsafe(ZipWriter().add(below).addLink("link", "/tmp")));
    EXPECT_TRUE(isUnsafe(ZipWriter().addLink("link/", "/tmp").add(below)));
    EXPECT_TRUE(isUnsafe(ZipWriter().addLink("./link", "/tmp").add({.name = "link//deeper/evil"})));
    EXPECT_FALSE(isUnsafe(ZipWriter().addLink("link", "/tmp").add({.name = "link2/good"})));
}

TEST(ZipCheck, TakesNamesThatAVolumeTakesForOneForOne) {
    EXPECT_TRUE(isUnsafe(ZipWriter().addLink("LINK", "/tmp").add({.name = "link/evil"})));
    EXPECT_TRUE(isUnsafe(ZipWriter().addLink("caf\xC3\xA9", "/tmp").add({.name = "cafe\xCC\x81/evil"})));
    EXPECT_TRUE(isUnsafe(ZipWriter().addLink("caf\xC3\xA9", "/tmp").add({.name = "caf\x82/evil"})));
    const std::string path = Practice::lowFirst(1, 1) + Practice::lowFirst(0, 4) + "link";
    EXPECT_TRUE(isUnsafe(ZipWriter()
                             .addLink("link", "/tmp")
                             .add({.name = "other/evil", .extra = ZipWriter::field(0x7075, path + "/evil")})));
}

TEST(ZipCheck, FindsWhatIsWrittenThroughALinkOfTheSameName) {
    EXPECT_TRUE(isUnsafe(ZipWriter().addLink("link", "/etc/passwd").add({.name = "link"})));
    EXPECT_TRUE(isUnsafe(ZipWriter().addLink("link", "/etc/passwd").add({.name = "Link"})));
    EXPECT_TRUE(isUnsafe(ZipWriter().addLink("link", "/tmp").addFolder("link/")));
    EXPECT_TRUE(isUnsafe(ZipWriter().addLink("link", "a").addLink("link", "/tmp")));
    EXPECT_TRUE(isUnsafe(ZipWriter().addLink(".", "/tmp")));
    EXPECT_TRUE(isUnsafe(ZipWriter().addLink("a", "/tmp").add({.name = "__MACOSX/a/._evil"})));
    EXPECT_FALSE(isUnsafe(ZipWriter().add({.name = "file"}).add({.name = "File"})));
}

TEST(ZipCheck, FindsFilesOfAttributesThatAreWrittenThroughALink) {
    const ZipWriter::Entry attributes{.name = "__MACOSX/folder/._x"};
    EXPECT_TRUE(isUnsafe(ZipWriter().addLink("folder/._x", "/etc/passwd").add(attributes)));
    EXPECT_TRUE(isUnsafe(ZipWriter().add(attributes).addLink("folder/._X", "/etc/passwd")));
    EXPECT_TRUE(isUnsafe(ZipWriter().addLink("._x", "/etc/passwd").add({.name = "__macosx//._x"})));
    EXPECT_FALSE(isUnsafe(ZipWriter().addLink("folder/x", "/etc/passwd").add(attributes))) << "attributes of a link";
}

/// The Unix mode of a link, and where it leads, in an extra field.
ZipWriter::Entry linkByExtraField() {
    const std::string asi = Practice::lowFirst(0, 4) + Practice::lowFirst(0120777, 2) + Practice::lowFirst(4, 4) +
                            Practice::lowFirst(0, 4) + "/tmp";
    return {.name = "link", .mode = 0, .extra = ZipWriter::field(0x756E, asi)};
}

TEST(ZipCheck, FindsLinksWhereverTheirModeStands) {
    EXPECT_TRUE(isUnsafe(ZipWriter().add(linkByExtraField()).add({.name = "link/evil"})));
    EXPECT_TRUE(isUnsafe(
        ZipWriter().add({.name = "link", .content = "/tmp", .mode = 0120777, .system = 0}).add({.name = "link/evil"})));
}

TEST(ZipCheck, FindsDevicesPipesAndHardLinks) {
    for (const unsigned mode : {0020666U, 0060666U, 0010666U, 0140666U})
        EXPECT_TRUE(isUnsafe({.name = "device", .mode = mode})) << mode;
    const std::string hardLink = Practice::lowFirst(0, 12) + "/etc/passwd";
    EXPECT_TRUE(isUnsafe({.name = "hard", .extra = ZipWriter::field(0x000D, hardLink)}));
    EXPECT_FALSE(isUnsafe({.name = "times", .extra = ZipWriter::field(0x000D, Practice::lowFirst(0, 12))}));
    EXPECT_FALSE(isUnsafe({.name = "setuid", .mode = 0104755}));
}

TEST(ZipCheck, BelievesNeitherOfTwoHeadersThatDiffer) {
    EXPECT_TRUE(isUnsafe({.name = "good", .localName = "../evil"}));
    EXPECT_TRUE(isUnsafe({.name = "../evil", .localName = "good"}));
    ZipWriter links;
    links.add({.name = "one", .content = "/tmp", .mode = 0120777, .localName = "two"}).add({.name = "two/evil"});
    EXPECT_TRUE(isUnsafe(links));
}

TEST(ZipCheck, FindsEntriesThatTheDirectoryHides) {
    EXPECT_TRUE(isUnsafe({.name = "../evil", .isListed = false}));
    EXPECT_TRUE(isUnsafe(ZipWriter().addLink("link", "/tmp").add({.name = "link", .isListed = false})));
    const std::string evil = ZipWriter().add({.name = "../evil"}).bytesOfEntries();
    EXPECT_TRUE(checkOfBytes(evil + ZipWriter().add({.name = "good"}).bytes()).isUnsafe);
    EXPECT_TRUE(isUnsafe({.name = "inside", .content = evil, .hasDescriptor = true}));
    EXPECT_FALSE(isUnsafe({.name = "inside.zip", .content = evil})) << "its length stands before it";
    EXPECT_FALSE(isUnsafe({.name = "good", .isListed = false}));
}

/// An archive whose directory claims that the data of the one entry take `size` bytes.
std::string withStoredSize(std::string bytes, std::uint64_t size) {
    constexpr std::size_t storedSizeAt = 20;
    return bytes.replace(bytes.rfind("PK\1\2") + storedSizeAt, 4, Practice::lowFirst(size, 4));
}

TEST(ZipCheck, FindsAHiddenEntryThatBeginsBeforeTheEndOfDataAndGoesOnBehindIt) {
    const std::string evil = ZipWriter().add({.name = "../evil"}).bytesOfEntries();
    const std::string bytes = ZipWriter().add({.name = "a", .content = "data" + evil, .hasDescriptor = true}).bytes();
    for (const std::uint64_t size : {4U, 5U, 6U, 7U, 8U, 20U})
        EXPECT_TRUE(checkOfBytes(withStoredSize(bytes, size)).isUnsafe) << size;
}

/// An archive whose directory has `count` entries for the one local header.
std::string withRepeatedDirectory(const std::string& bytes, std::size_t count) {
    const std::size_t begin = bytes.rfind("PK\1\2");
    const std::string entry = bytes.substr(begin, bytes.rfind("PK\5\6") - begin);
    std::string all = bytes.substr(0, begin);
    for (std::size_t i = 0; i < count; ++i) all += entry;
    all += "PK\5\6" + Practice::lowFirst(0, 4) + Practice::lowFirst(count, 2) + Practice::lowFirst(count, 2);
    return all + Practice::lowFirst(count * entry.size(), 4) + Practice::lowFirst(begin, 4) + Practice::lowFirst(0, 2);
}

TEST(ZipCheck, LooksAtDataThatManyEntriesShareOnce) {
    constexpr std::size_t many = 50'000;
    std::string hidden;
    const std::string one = ZipWriter().add({.name = "f"}).bytesOfEntries();
    for (std::size_t i = 0; i < many; ++i) hidden += one;
    const auto shared = [&](const std::string& last) {
        return withRepeatedDirectory(
            ZipWriter().add({.name = "a", .content = hidden + last, .hasDescriptor = true}).bytes(), many);
    };
    EXPECT_FALSE(checkOfBytes(shared("")).isUnsafe);
    EXPECT_TRUE(checkOfBytes(shared(ZipWriter().add({.name = "../evil"}).bytesOfEntries())).isUnsafe);
}

TEST(ZipCheck, RefusesToReadOneLongNameAgainAndAgain) {
    const std::string one = ZipWriter().add({.name = "a", .localName = std::string(60'000, 'n')}).bytes();
    EXPECT_FALSE(checkOfBytes(withRepeatedDirectory(one, 2)).isUnsafe);
    EXPECT_TRUE(checkOfBytes(withRepeatedDirectory(one, 50)).isUnsafe);
}

TEST(ZipCheck, LooksAtEverythingWhereTheDirectoryIsMissing) {
    EXPECT_TRUE(checkOfBytes(ZipWriter().add({.name = "good"}).add({.name = "../evil"}).bytesOfEntries()).isUnsafe);
    EXPECT_FALSE(checkOfBytes(ZipWriter().add({.name = "good"}).addLink("a", "b").bytesOfEntries()).isUnsafe);
    std::string cut = ZipWriter().addLink("link", "/tmp").add({.name = "link/evil"}).bytes();
    EXPECT_TRUE(checkOfBytes(cut.substr(0, cut.size() - 1)).isUnsafe);
    const std::string good = ZipWriter().addLink("link", "/tmp").add({.name = "good"}).bytes();
    EXPECT_FALSE(checkOfBytes(good.substr(0, good.size() - 1)).isUnsafe);
}

TEST(ZipCheck, SeesWhatLocalHeadersTellWhereTheDirectoryIsMissing) {
    const auto isUnsafeWithoutDirectory = [](const ZipWriter& archive) {
        return checkOfBytes(archive.bytesOfEntries()).isUnsafe;
    };
    const auto link = linkByExtraField();
    EXPECT_TRUE(isUnsafeWithoutDirectory(ZipWriter().add(link).add({.name = "link/evil"})));
    EXPECT_TRUE(isUnsafeWithoutDirectory(ZipWriter().add({.name = "link"}).add(link)));
    EXPECT_FALSE(isUnsafeWithoutDirectory(ZipWriter().add(link).add({.name = "good"})));
    const std::string hardLink = Practice::lowFirst(0, 12) + "/etc/passwd";
    EXPECT_TRUE(
        isUnsafeWithoutDirectory(ZipWriter().add({.name = "hard", .extra = ZipWriter::field(0x000D, hardLink)})));
    const std::string cut = ZipWriter().add(link).add({.name = "good"}).bytes();
    EXPECT_FALSE(checkOfBytes(cut.substr(0, cut.size() - 1)).isUnsafe) << "one link has two headers";
}

TEST(ZipCheck, TrustsNoDirectoryWhereTwoCouldBeMeant) {
    // Each of the two records reaches to the end of the file.
    const std::string evil = ZipWriter().addLink("link", "/tmp").add({.name = "link/evil"}).bytes();
    const std::string good = ZipWriter().add({.name = "good"}).bytes();
    std::string both = evil.substr(0, evil.size() - 2) + Practice::lowFirst(good.size(), 2) + good;
    EXPECT_TRUE(checkOfBytes(both).isUnsafe);
}

TEST(ZipCheck, ReadsAnArchiveThatBeginsLaterThanItsFile) {
    const std::string shell = "#!/bin/sh\nexit\n";
    EXPECT_FALSE(checkOfBytes(shell + ZipWriter().add({.name = "good", .content = "1234"}).bytes()).isUnsafe);
    EXPECT_EQ(checkOfBytes(shell + ZipWriter().add({.name = "good", .content = "1234"}).bytes()).unpackedSize, 4);
    EXPECT_TRUE(checkOfBytes(shell + ZipWriter().add({.name = "../evil"}).bytes()).isUnsafe);
}

TEST(ZipCheck, AddsUpWhatIsClaimed) {
    ZipWriter bomb;
    for (int i = 0; i < 10; ++i)
        bomb.add({.name = fmt::format("f{}", i), .content = "1", .claimedSize = 4'000'000'000});
    EXPECT_EQ(checkOfBytes(bomb.bytes()).unpackedSize, 40'000'000'000);
    const std::string huge = ZipWriter::field(1, Practice::lowFirst(0xFFFFFFFFFFFFFFFF, 8));
    ZipWriter overflowing;
    for (const char* name : {"a", "b"}) overflowing.add({.name = name, .extra = huge, .claimedSize = 0xFFFFFFFF});
    EXPECT_EQ(checkOfBytes(overflowing.bytes()).unpackedSize, std::numeric_limits<std::int64_t>::max());
}

TEST(ZipCheck, TakesNamesOfAnyLength) {
    std::string deep;
    for (int level = 0; level < 10'000; ++level) deep += "a/";
    EXPECT_FALSE(isUnsafe({.name = deep + "file"}));
    EXPECT_TRUE(isUnsafe({.name = deep + "../file"}));
    EXPECT_TRUE(isUnsafe(ZipWriter().add({.name = deep + "file"}).addLink("A/a/a", "/tmp")));
    EXPECT_FALSE(isUnsafe({.name = std::string(4096, 'n')}));
    EXPECT_FALSE(isUnsafe({.name = std::string(0xFFFF, 'n')}));
}

}  // namespace
}  // namespace tarvik::test
