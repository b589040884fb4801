#include "Platform/Files/FileDescriptor.h"
#include "Platform/Files/Files.h"
#include "Platform/Processes/ChildProcess.h"
#include "Platform/Processes/CommandRunner.h"
#include "Practice/DiskImages/Bytes.h"
#include "StandIns/hdiutil/ImageWorld.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace tarvik::test {
namespace {

namespace DiskImage = Practice::DiskImage;
using Practice::HFSVolume::Item;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr mode_t file = S_IFREG | 0644;
constexpr mode_t link = S_IFLNK | 0755;
constexpr mode_t directory = S_IFDIR | 0755;

class HdiutilHostileImage : public ImageWorld {
protected:
    fs::path fileOf(const std::string& bytes) const {
        fs::path path = folder / "bad.dmg";
        fs::remove(path);
        Files::createFile(path, bytes);
        return path;
    }
};

TEST_F(HdiutilHostileImage, IsNoneWhenItIsSomethingElse) {
    expectRefusal(fileOf(""), "image not recognized");
    expectRefusal(fileOf("just a text\n"), "image not recognized");
    expectRefusal(fileOf(std::string(1'000'000, 'x')), "image not recognized");
    expectRefusal(fileOf(std::string(1'000'000, '\0')), "image not recognized");
    expectRefusal(tree, "image not recognized");
    expectRefusal("/dev/null", "image not recognized");
    expectRefusal(folder / "missing.dmg", "No such file or directory");
    makePipe(folder / "pipe.dmg");
    expectRefusal(folder / "pipe.dmg", "image not recognized");
}

TEST_F(HdiutilHostileImage, IsRefusedWhenItIsEncryptedOrWantsALicenceToBeRead) {
    expectRefusal(fileOf("encrcdsa" + std::string(100'000, 'e')), "Authentication error");
    expectRefusal(fileOf(std::string(100'000, 'e') + "cdsaencr"), "Authentication error");

    const std::string image = contentOf(imageOfTree(DiskImage::zlib()));
    const std::size_t list = image.find("<?xml");
    std::string licensed = image.substr(list, image.size() - 512 - list);
    licensed.insert(licensed.find("<key>blkx</key>"), "<key>LPic</key><array/>");
    std::string trailer = image.substr(image.size() - 512);
    trailer.replace(224, 8, Practice::Bytes().big(std::uint64_t{licensed.size()}).all());
    expectRefusal(fileOf(image.substr(0, list) + licensed + trailer), "attach canceled");
}

TEST_F(HdiutilHostileImage, IsRefusedWhenAByteOfItHasChanged) {
    const std::string image = contentOf(imageOfTree(DiskImage::zlib()));
    for (const std::size_t place : {std::size_t{3}, std::size_t{1000}, std::size_t{200'000}, std::size_t{500'000}}) {
        std::string changed = image;
        changed[place] = static_cast<char>(changed[place] ^ 1);
        expectRefusal(fileOf(changed), "corrupt image");
    }
}

TEST_F(HdiutilHostileImage, IsRefusedWhenItIsCutOff) {
    const std::string image = contentOf(imageOfTree(DiskImage::zlib()));
    expectRefusal(fileOf(image.substr(0, image.size() / 2)), "image not recognized");
    expectRefusal(fileOf(image.substr(0, 300'000) + image.substr(image.size() - 512)), "corrupt image");
}

TEST_F(HdiutilHostileImage, WritesNothingAboveTheVolume) {
    expectRefusal(imageOf({itemAt(0, u"..", directory), itemAt(1, u"climbed", file, "x")}), "corrupt image");
    expectRefusal(imageOf({itemAt(0, u".", file, "x")}), "corrupt image");
    expectRefusal(imageOf({itemAt(0, u"deep", directory), itemAt(1, u"..", directory), itemAt(2, u"..", directory),
                           itemAt(3, u"climbed", file, "x")}),
                  "corrupt image");
    EXPECT_THAT(Files::names(machine), ElementsAre("Volumes"));
}

TEST_F(HdiutilHostileImage, TakesASlashInANameForALetter) {
    attached(imageOf({itemAt(0, u"../../up", file, "x"), itemAt(0, u"/etc", file, "y")}));
    EXPECT_THAT(Files::names(volumes / "Volume"), ElementsAre(".._.._up", "_etc"));
    EXPECT_THAT(Files::names(machine), ElementsAre("Volumes"));
}

TEST_F(HdiutilHostileImage, WritesThroughNoLink) {
    makeFolder(folder / "outside");
    const std::string outside = (folder / "outside").native();
    // Two items of one name: a link, and a folder with a file in it.
    expectRefusal(
        imageOf({itemAt(0, u"way", link, outside), itemAt(0, u"way", directory), itemAt(2, u"in", file, "x")}),
        "corrupt image");
    expectRefusal(
        imageOf({itemAt(0, u"way", directory), itemAt(1, u"in", file, "x"), itemAt(0, u"way", link, outside)}),
        "corrupt image");
    expectRefusal(imageOf({itemAt(0, u"way", link, outside + "/new"), itemAt(0, u"way", file, "x")}), "corrupt image");
    EXPECT_TRUE(fs::is_empty(folder / "outside"));
}

TEST_F(HdiutilHostileImage, KeepsLinksAsTheyAreWritten) {
    attached(imageOf({itemAt(0, u"absolute", link, "/etc/passwd"), itemAt(0, u"up", link, "../../../up"),
                      itemAt(0, u"lines", link, "one\ntwo"), itemAt(0, u"self", link, "self")}));
    EXPECT_EQ(Files::readLink(volumes / "Volume/absolute"), "/etc/passwd");
    EXPECT_EQ(Files::readLink(volumes / "Volume/up"), "../../../up");
    EXPECT_EQ(Files::readLink(volumes / "Volume/lines"), "one\ntwo");
    EXPECT_EQ(Files::readLink(volumes / "Volume/self"), "self");
}

TEST_F(HdiutilHostileImage, GivesNobodysRightsAway) {
    attached(imageOf({itemAt(0, u"suid", S_IFREG | 06755, "x"), itemAt(0, u"sticky", S_IFDIR | 01777),
                      itemAt(0, u"device", S_IFCHR | 0666), itemAt(0, u"pipe", S_IFIFO | 0666)}));
    EXPECT_THAT(Files::names(volumes / "Volume"), ElementsAre("sticky", "suid"));
    EXPECT_EQ(statusOf(volumes / "Volume/suid").st_mode & 07777, 0755U);
    EXPECT_EQ(statusOf(volumes / "Volume/sticky").st_mode & 07777, 0777U);
}

TEST_F(HdiutilHostileImage, IsNamedSoThatItCanStandInAFolder) {
    const std::vector<std::pair<std::string, std::string>> names = {{"..", "Untitled"},
                                                                    {".hidden", "Untitled"},
                                                                    {"a\nb", "a_b"},
                                                                    {"\x01", "_"},
                                                                    {std::string(255, 'n'), std::string(247, 'n')}};
    for (const auto& [name, shown] : names) {
        EXPECT_THAT(attached(imageOf({itemAt(0, u"file", file, "x")}, name)), ElementsAre((volumes / shown).native()));
        EXPECT_EQ(contentOf(volumes / shown / "file"), "x");
        EXPECT_EQ(detach(volumes / shown).status, 0);
        expectNothingAttached();
    }
}

TEST_F(HdiutilHostileImage, MayBeDeep) {
    std::vector<Item> items;
    for (std::size_t level = 0; level < 1000; ++level) items.push_back(itemAt(level, u"level", directory));
    items.push_back(itemAt(1000, u"bottom", file, "x"));
    EXPECT_THAT(attached(imageOf(items)), ElementsAre((volumes / "Volume").native()));
    EXPECT_EQ(detach(volumes / "Volume").status, 0);
    expectNothingAttached();
}

TEST_F(HdiutilHostileImage, WithNamesTooLongForTheSystemIsRefused) {
    expectRefusal(imageOf({itemAt(0, std::u16string(255, u'\u4E00'), file, "x")}), "File name too long");
}

TEST_F(HdiutilHostileImage, WithHardLinksIsRefused) {
    const std::u16string hidden = std::u16string(4, u'\0') + u"HFS+ Private Data";
    Item name = itemAt(0, u"name", file);
    name.typeAndCreator = "hlnkhfs+";
    name.special = 17;
    expectRefusal(imageOf({itemAt(0, hidden, directory), itemAt(1, u"iNode17", file, "shared"), name}),
                  "volumes with hard links cannot be read here");
}

TEST_F(HdiutilHostileImage, IsRefusedWhereThereIsNoRoom) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const fs::path image = imageOf({itemAt(0, u"zeros", file, std::string(20 * megabyte, '\0'))});
    EXPECT_LT(fs::file_size(image), 200'000U);
    const auto small = RealVolume::memory(folder.path(), 10 * megabyte);
    const EnvironmentVariable elsewhere("TARVIK_ROOT", small.path().native());
    const auto result = attach(image);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.stderr, "hdiutil: attach failed - No space left on device\n");
    EXPECT_THAT(Files::names(small / "Volumes"), IsEmpty());
}

TEST_F(HdiutilHostileImage, IsRemovedAlsoByAnOrdinaryUser) {
    const fs::path image = imageOf({itemAt(0, u"closed", S_IFDIR | 0000), itemAt(1, u"deeper", S_IFDIR | 0111),
                                    itemAt(2, u"file", S_IFREG | 0000, "x"), itemAt(0, u"file", S_IFREG | 0000, "x")});
    fs::permissions(volumes, fs::perms(0777));
    fs::permissions(folder.path(), fs::perms(0777));
    const auto asOrdinaryUser = [](std::vector<std::string> words) {
        words.insert(words.begin(), programOfThisBuild("stand-ins/hdiutil"));
        // With both of its user numbers changed, for a sanitizer finds no leaks in a program that may change back.
        if (::geteuid() == 0)
            words.insert(words.begin(), {"/usr/bin/setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"});
        const fs::path program = words.front();
        words.erase(words.begin());
        return CommandRunner::run(program, words);
    };
    const auto attached = asOrdinaryUser({"attach", image.native(), "-plist", "-nobrowse", "-readonly"});
    EXPECT_EQ(attached.status, 0) << attached.stderr;
    EXPECT_THAT(attached.stdout, testing::HasSubstr((volumes / "Volume").native()));
    EXPECT_EQ(asOrdinaryUser({"detach", volumes / "Volume", "-quiet"}).status, 0);
    expectNothingAttached();
}

TEST_F(HdiutilHostileImage, LeavesNothingWhenAttachingIsKilled) {
    const fs::path image = imageOfTree(DiskImage::zlib());
    // A 7-Zip that stops where it should hand over the files.
    const fs::path gate = folder / "gate";
    const fs::path started = folder / "started";
    makePipe(gate);
    const FileDescriptor opened(::open(gate.c_str(), O_RDWR | O_CLOEXEC));
    makeFile(folder / "bin/7zz", "#!/bin/sh\nPATH=/usr/bin:/bin:/opt/homebrew/bin\n[ \"$1\" != x ] || { : >'" +
                                     started.native() + "'; exec cat '" + gate.native() + "'; }\nexec 7zz \"$@\"\n");
    fs::permissions(folder / "bin/7zz", fs::perms(0755));
    const EnvironmentVariable path("PATH", (folder / "bin").native() + ":/usr/bin:/bin");
    for (const int signal : {SIGTERM, SIGKILL}) {
        auto child = ChildProcess::start(programOfThisBuild("stand-ins/hdiutil"), {"attach", image.native()});
        ASSERT_TRUE(comesToStand(started));
        EXPECT_TRUE(fs::exists(volumes / ".diskimages/disk4/0"));
        signal == SIGKILL ? child.kill() : child.terminate();
        EXPECT_NE(child.wait(), 0);
        if (signal == SIGTERM) expectNothingAttached();
        EXPECT_EQ(detach("/dev/disk4").status, 1);
        expectNothingAttached();
        fs::remove(started);
    }
}

TEST_F(HdiutilHostileImage, IsAttachedOnceByTwoAtOnce) {
    const fs::path image = imageOfTree(DiskImage::zlib());
    std::vector<std::string> answers(4);
    std::vector<std::thread> threads;
    threads.reserve(answers.size());
    for (std::string& answer : answers) threads.emplace_back([&] { answer = attach(image).stdout; });
    for (std::thread& thread : threads) thread.join();
    for (const std::string& answer : answers) EXPECT_EQ(answer, answers[0]);
    EXPECT_EQ(contentsOf(volumes / "Editor"), contentsOf(tree));
    EXPECT_THAT(Files::names(volumes), ElementsAre(".diskimages", "Editor"));
    EXPECT_EQ(detach(volumes / "Editor").status, 0);
    expectNothingAttached();
}

}  // namespace
}  // namespace tarvik::test
