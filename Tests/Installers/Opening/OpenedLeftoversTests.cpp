#include "Installers/Opening/DiskImageMounter.h"
#include "Installers/Opening/OpenedLeftovers.h"
#include "Installers/Opening/ZipExpander.h"
#include "Platform/Files/Files.h"
#include "Practice/Archives/ZipWriter.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace tarvik::test {
namespace {

using Practice::ZipWriter;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

/// A process of its own that is killed as soon as something stands at `path`, while it acts.
void killWhenStands(const fs::path& path, const std::function<void()>& act) {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        act();
        ::_exit(0);
    }
    EXPECT_TRUE(comesToStand(path));
    ::kill(child, SIGKILL);
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status));
}

/// Sweeps until the temporary folder is empty, since a tool may outlive the killed run for a moment.
bool sweepsClean(const World& world) {
    for (int turn = 0; turn < 600; ++turn) {
        OpenedLeftovers::sweep(world.host);
        if (Files::names(world.host.temporary).empty()) return true;
        ::usleep(100'000);
    }
    return false;
}

class LeftoversWorld : public World {
public:
    LeftoversWorld() : started(folder / "started"), go(folder / "go"), point(folder / "Volumes/Image") {
        makeFile(folder / "image.dmg");
        ZipWriter().add({.name = "file"}).writeTo(folder / "archive.zip");
        withDitto("echo half > \"$4/half\"; touch '" + started.native() + "'; " + waitFor(go) + "\ntouch \"$4/rest\"");
        hdiutil("touch '" + started.native() + "'; " + waitFor(go));
    }

    void hdiutil(const std::string& afterwards) {
        host.tools.hdiutil = tool(
            "hdiutil", "echo \"$1 $2\" >> '" + (folder / "calls").native() + "'\ncase $1 in attach) mkdir '" +
                           point.native() + "'\n" + afterwards +
                           "\necho '<plist><dict><key>system-entities</key><array><dict>"
                           "<key>mount-point</key><string>" +
                           point.native() + "</string></dict></array></dict></plist>' ;; detach) rmdir \"$2\" ;; esac");
    }
    std::string calls() const { return contentOf(folder / "calls"); }
    std::vector<std::string> namesInTemporary() const { return Files::names(host.temporary); }

    fs::path started;
    fs::path go;
    fs::path point;
};

TEST(OpenedLeftovers, TakesTheFolderOfAKilledRunToTheTrashOnceItsToolHasEnded) {
    const LeftoversWorld world;
    killWhenStands(world.started, [&] { ZipExpander::expand(world.host, world.folder / "archive.zip"); });
    OpenedLeftovers::sweep(world.host);
    EXPECT_THAT(world.namesInTemporary(), ElementsAre(StartsWith("TarvikZip-"))) << "its tool still writes";
    makeFile(world.go);
    EXPECT_TRUE(sweepsClean(world));
    const auto trashed = Files::names(world.trash->folder);
    ASSERT_THAT(trashed, ElementsAre(StartsWith("TarvikZip-")));
    EXPECT_THAT(Files::names(world.trash->folder / trashed.front()), ElementsAre("half", "rest"));
}

TEST(OpenedLeftovers, DetachesWhatAKilledRunWasAttaching) {
    const LeftoversWorld world;
    killWhenStands(world.started, [&] { DiskImageMounter::attach(world.host, world.folder / "image.dmg"); });
    OpenedLeftovers::sweep(world.host);
    EXPECT_THAT(world.namesInTemporary(), SizeIs(1)) << "its tool has not answered yet";
    makeFile(world.go);
    EXPECT_TRUE(sweepsClean(world));
    EXPECT_FALSE(Files::itemExists(world.point));
}

TEST(OpenedLeftovers, DetachesWhatAKilledRunHasAttached) {
    LeftoversWorld world;
    world.hdiutil("");
    const fs::path attached = world.folder / "attached";
    killWhenStands(attached, [&] {
        const auto mount = DiskImageMounter::attach(world.host, world.folder / "image.dmg");
        makeFile(attached);
        for (;;) ::pause();
    });
    EXPECT_TRUE(sweepsClean(world));
    EXPECT_FALSE(Files::itemExists(world.point));
    EXPECT_EQ(world.calls(),
              "attach " + (world.folder / "image.dmg").native() + "\ndetach " + world.point.native() + "\n");
}

TEST(OpenedLeftovers, LeavesWhatARunHasAttachedThatStillLives) {
    LeftoversWorld world;
    world.hdiutil("");
    const auto mount = DiskImageMounter::attach(world.host, world.folder / "image.dmg");
    OpenedLeftovers::sweep(world.host);
    EXPECT_TRUE(Files::itemExists(world.point));
    EXPECT_THAT(world.namesInTemporary(), SizeIs(1));
    DiskImageMounter::detach(world.host, mount);
    EXPECT_FALSE(Files::itemExists(world.point));
    EXPECT_THAT(world.namesInTemporary(), IsEmpty());
}

TEST(OpenedLeftovers, LeavesWhatHasComeToTheMountPointSince) {
    LeftoversWorld world;
    world.hdiutil("");
    DiskImageMounter::attach(world.host, world.folder / "image.dmg");
    fs::rename(world.point, world.folder / "elsewhere");
    makeFolder(world.point);
    OpenedLeftovers::sweep(world.host);
    EXPECT_TRUE(Files::itemExists(world.point));
    EXPECT_THAT(world.namesInTemporary(), IsEmpty()) << "there is nothing left to do";
    EXPECT_EQ(world.calls(), "attach " + (world.folder / "image.dmg").native() + "\n");
}

TEST(OpenedLeftovers, TriesAgainToDetachWhatIsBusy) {
    LeftoversWorld world;
    world.hdiutil("");
    const fs::path busy = world.point / "busy";
    const fs::path elsewhere = world.folder / "elsewhere";
    world.hdiutil("touch '" + busy.native() + "'");
    DiskImageMounter::attach(world.host, world.folder / "image.dmg");
    OpenedLeftovers::sweep(world.host);
    EXPECT_THAT(world.namesInTemporary(), SizeIs(1));
    EXPECT_TRUE(Files::itemExists(world.point));
}

TEST(OpenedLeftovers, TouchesNothingElse) {
    const LeftoversWorld world;
    const std::string identifier = "9B2F0C4E-0000-4000-8000-000000000000";
    makeFile(world.host.temporary / "TarvikZip-mine/file");
    makeFile(world.host.temporary / ("TarvikZip-" + identifier));
    makeLink(world.host.temporary / ("TarvikZip-" + identifier.substr(0, 35) + "1"), world.home);
    makeLink(world.host.temporary / ("TarvikImage-" + identifier), world.folder / "image.dmg");
    makeFile(world.host.temporary / "else/file");
    const std::string before = pictureOf(world.folder.path());
    OpenedLeftovers::sweep(world.host);
    EXPECT_EQ(pictureOf(world.folder.path()), before);
}

TEST(OpenedLeftovers, BelievesNoNoteThatIsBroken) {
    const LeftoversWorld world;
    makeFolder(world.point);
    const std::string identifier = "9B2F0C4E-0000-4000-8000-00000000000";
    const std::string answer = "<plist><dict><key>system-entities</key><array><dict><key>mount-point</key><string>" +
                               world.point.native() + "</string></dict></array></dict></plist>";
    int number = 0;
    for (const std::string& note : {std::string(), std::string("text"), answer, std::string(1, '\0') + answer})
        makeFile(world.host.temporary / ("TarvikImage-" + identifier + std::to_string(number++)), note);
    OpenedLeftovers::sweep(world.host);
    EXPECT_TRUE(Files::itemExists(world.point));
    EXPECT_FALSE(Files::itemExists(world.folder / "calls"));
    EXPECT_THAT(world.namesInTemporary(), IsEmpty());
}

}  // namespace
}  // namespace tarvik::test
