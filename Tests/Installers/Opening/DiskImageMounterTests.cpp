#include "Installers/Opening/DiskImageMounter.h"
#include "Installers/Opening/OpenedLeftovers.h"
#include "Platform/Files/Files.h"
#include "Support/ThrownFailure.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarvik::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

std::string answerWith(const std::string& entities) {
    return R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict><key>system-entities</key>)" + entities +
           "</dict></plist>";
}

std::string entity(const std::string& device, const std::string& mountPoint) {
    std::string text = "<dict>";
    if (!device.empty()) text += "<key>dev-entry</key><string>" + device + "</string>";
    text += "<key>mount-point</key><string>" + mountPoint + "</string></dict>";
    return text;
}

/// A world with an image and a tool that attaches it under Volumes, and detaches what is there; it notes what it is
/// asked, a line each.
class MountingWorld : public World {
public:
    MountingWorld() : image(folder / "My image.dmg"), first(folder / "Volumes/One"), second(folder / "Volumes/Two") {
        makeFile(image);
        answers(answerWith("<array><dict><key>content-hint</key><string>GUID</string></dict>" +
                           entity("/dev/disk8s1", first) + entity("/dev/disk8s2", second) + entity("", "") +
                           "</array>"));
    }

    MountingWorld& answers(const std::string& answer, const std::string& more = {}) {
        makeFile(folder / "answer", answer);
        const std::string attaching =
            "mkdir -p '" + first.native() + "' '" + second.native() + "'; cat '" + (folder / "answer").native() + "'";
        host.tools.hdiutil =
            tool("hdiutil", "echo \"$*\" >> '" + (folder / "calls").native() + "'\n" + more + "\ncase $1 in attach) " +
                                attaching + " ;; detach) rmdir \"$2\" ;; esac");
        return *this;
    }
    std::string calls() const { return Files::exists(folder / "calls") ? contentOf(folder / "calls") : std::string(); }
    std::vector<std::string> namesInTemporary() const { return Files::names(host.temporary); }

    fs::path image;
    fs::path first;
    fs::path second;
};

TEST(DiskImageMounter, GivesMountPointsAndDevicesInTheOrderOfTheTool) {
    const MountingWorld world;
    const auto mount = DiskImageMounter::attach(world.host, world.image);
    EXPECT_EQ(world.calls(), "attach " + world.image.native() + " -plist -nobrowse -readonly\n");
    EXPECT_EQ(mount.imagePath, world.image);
    EXPECT_THAT(mount.mountPoints, ElementsAre(world.first, world.second));
    EXPECT_THAT(mount.devicePaths, ElementsAre("/dev/disk8s1", "/dev/disk8s2"));
}

TEST(DiskImageMounter, TakesAnAnswerOfAnotherShapeForNothingMounted) {
    MountingWorld world;
    for (const std::string& answer :
         {answerWith("<dict/>"), answerWith("<array><string>text</string><dict/></array>"), answerWith("<string/>"),
          std::string("<plist><array/></plist>"), std::string("<plist><dict/></plist>")}) {
        const auto mount = DiskImageMounter::attach(world.answers(answer).host, world.image);
        EXPECT_THAT(mount.mountPoints, IsEmpty()) << answer;
        EXPECT_THAT(mount.devicePaths, IsEmpty()) << answer;
    }
}

TEST(DiskImageMounter, FailsWithTheStatusAndTheWordsOfTheTool) {
    MountingWorld world;
    world.answers("", "echo 'hdiutil: attach failed - image not recognized' >&2; exit 1");
    const auto failure = failureThrownBy([&] { DiskImageMounter::attach(world.host, world.image); });
    EXPECT_EQ(failure.domain(), "hdiutil");
    EXPECT_EQ(failure.code(), 1);
    EXPECT_EQ(failure.description(), "hdiutil: attach failed - image not recognized\n");
    EXPECT_THAT(world.namesInTemporary(), IsEmpty());
    world.host.tools.hdiutil = world.folder / "none";
    EXPECT_EQ(failureThrownBy([&] { DiskImageMounter::attach(world.host, world.image); }).code(), 127);
}

TEST(DiskImageMounter, FailsWhereTheAnswerIsNoPropertyList) {
    MountingWorld world;
    for (const std::string answer : {"", "disk8", "<plist><dict>"}) {
        const auto failure =
            failureThrownBy([&] { DiskImageMounter::attach(world.answers(answer).host, world.image); });
        EXPECT_EQ(failure.domain(), "hdiutil");
        EXPECT_EQ(failure.description(), "The answer of hdiutil could not be read.");
        EXPECT_THAT(world.namesInTemporary(), IsEmpty());
    }
}

TEST(DiskImageMounter, DetachesTheFirstThatGoes) {
    const MountingWorld world;
    const auto mount = DiskImageMounter::attach(world.host, world.image);
    DiskImageMounter::detach(world.host, mount);
    EXPECT_THAT(world.calls(), ::testing::EndsWith("\ndetach " + world.first.native() + " -quiet\n"));
    EXPECT_THAT(world.namesInTemporary(), IsEmpty());
}

TEST(DiskImageMounter, TriesEveryPointAndDeviceUntilOneGoes) {
    MountingWorld world;
    const auto mount = DiskImageMounter::attach(world.host, world.image);
    fs::remove(world.folder / "calls");
    makeFile(world.first / "busy");
    makeFile(world.second / "busy");
    DiskImageMounter::detach(world.host, mount);
    EXPECT_EQ(world.calls(), "detach " + world.first.native() + " -quiet\ndetach " + world.second.native() +
                                 " -quiet\ndetach /dev/disk8s1 -quiet\ndetach /dev/disk8s2 -quiet\n");
    EXPECT_THAT(world.namesInTemporary(), SizeIs(1)) << "it is tried again";
}

TEST(DiskImageMounter, LeavesWhatSomebodyElseHasAttached) {
    const MountingWorld world;
    makeFolder(world.first);
    const auto mount = DiskImageMounter::attach(world.host, world.image);
    EXPECT_TRUE(mount.isBorrowed);
    EXPECT_THAT(mount.mountPoints, ElementsAre(world.first, world.second));
    EXPECT_THAT(world.namesInTemporary(), IsEmpty());
    fs::remove(world.folder / "calls");
    DiskImageMounter::detach(world.host, mount);
    OpenedLeftovers::sweep(world.host);
    EXPECT_EQ(world.calls(), "");
}

}  // namespace
}  // namespace tarvik::test
