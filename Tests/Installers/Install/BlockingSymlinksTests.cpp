#include "Installers/Install/BlockingSymlinks.h"
#include "Installers/Install/InstallWorld.h"
#include "Platform/Files/Files.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace tarvik::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A machine with links where a package installs, and a drive that holds copies.
class BlockingSymlinksTest : public testing::Test {
protected:
    BlockingSymlinksTest() { describe({"A.app", "B.app"}); }

    void describe(const std::vector<std::string>& names) {
        std::string lines;
        for (const auto& name : names) lines += "/Applications/" + name + "\n";
        makeFile(world.folder / "description", lines);
        world.host.tools.xar =
            world.tool("xar", "cp " + (world.folder / "description").native() + " \"$4/PackageInfo\"");
    }
    fs::path link(const std::string& name, const fs::path& destination) {
        makeLink(world.launcher(name), destination);
        return world.launcher(name);
    }
    bool clear(bool useRootferry = false) { return clearFor(world.folder / "Some.pkg", useRootferry); }
    bool clearFor(const fs::path& package, bool useRootferry = false) {
        world.lines->clear();
        return BlockingSymlinks::clear(world.host, package, useRootferry, world.terms().reporter, world.cancellation);
    }
    bool mayGo(const fs::path& destination) const {
        return BlockingSymlinks::mayRemoveDestination(world.host, destination);
    }
    std::string lineOf(const std::string& name, const fs::path& destination) const {
        return "pre-install-clear-symlink\t" + world.launcher(name).native() + "\t-> " + destination.native();
    }

    InstallWorld world;
    fs::path copy = world.makeApp(world.drive / "ExternalTarvik/Apps/A.app");
};

}  // namespace

TEST_F(BlockingSymlinksTest, GoWithTheCopyOnTheDrive) {
    const fs::path other = world.makeApp(world.drive / "Other/B.app");
    link("A.app", copy);
    link("B.app", other);
    link("C.app", world.makeApp(world.drive / "C.app"));
    clear();
    EXPECT_THAT(*world.lines, ElementsAre(lineOf("A.app", copy), lineOf("B.app", other)));
    EXPECT_THAT(Files::names(world.folder / "Applications"), ElementsAre("C.app"));
    EXPECT_FALSE(Files::itemExists(copy));
    EXPECT_FALSE(Files::itemExists(other));
    EXPECT_TRUE(Files::exists(world.drive / "C.app"));
    EXPECT_FALSE(Files::exists(world.trash->folder)) << "they go for good";
}

TEST_F(BlockingSymlinksTest, AreAllToldOfBeforeAnythingGoes) {
    const fs::path other = world.makeApp(world.drive / "B.app");
    link("A.app", copy);
    link("B.app", other);
    std::size_t standing = 0;
    BlockingSymlinks::clear(world.host, world.folder / "Some.pkg", false, {[&](const std::string&) {
                                standing += Files::names(world.folder / "Applications").size();
                                standing += Files::exists(copy) && Files::exists(other) ? 10 : 0;
                            }});
    EXPECT_EQ(standing, 24U);
}

TEST_F(BlockingSymlinksTest, StayWhenTheyLeadElsewhere) {
    const fs::path opt = world.makeApp(world.folder / "opt/A.app");
    link("A.app", opt);
    link("B.app", "../Volumes/Backup/ExternalTarvik/Apps/A.app");
    clear();
    EXPECT_THAT(*world.lines, IsEmpty());
    EXPECT_THAT(Files::names(world.folder / "Applications"), ElementsAre("A.app", "B.app"));
    EXPECT_TRUE(Files::exists(opt));
    EXPECT_TRUE(Files::exists(copy));
}

TEST_F(BlockingSymlinksTest, AreNoFolders) {
    const fs::path app = world.makeApp(world.launcher("A.app"));
    const std::string before = pictureOf(app);
    clear();
    EXPECT_EQ(pictureOf(app), before);
    EXPECT_THAT(*world.lines, IsEmpty());
}

TEST_F(BlockingSymlinksTest, GoAlsoWhenTheCopyIsGone) {
    link("A.app", world.drive / "gone/A.app");
    link("B.app", world.folder / "Volumes/Away/ExternalTarvik/Apps/B.app");
    clear();
    EXPECT_THAT(Files::names(world.folder / "Applications"), IsEmpty());
}

TEST_F(BlockingSymlinksTest, KeepTheirCopyWhenTheyCannotGo) {
    link("A.app", copy);
    // Between the line and the removal, something else has come to the place.
    BlockingSymlinks::clear(world.host, world.folder / "Some.pkg", false, {[&](const std::string&) {
                                fs::remove(world.launcher("A.app"));
                                makeLink(world.launcher("A.app"), "/opt");
                            }});
    EXPECT_TRUE(Files::exists(copy));
    EXPECT_TRUE(Files::isSymbolicLink(world.launcher("A.app")));
}

TEST_F(BlockingSymlinksTest, GoByTheToolOfRoot) {
    link("A.app", copy);
    const std::string said = (world.folder / "said").native();
    world.host.tools.rootferry = world.tool("rootferry", "echo \"$@\" >> " + said + "; \"$@\"");
    clear(true);
    EXPECT_EQ(contentOf(said), "rm -f " + world.launcher("A.app").native() + "\nrm -rf " + copy.native() + "\n");
    EXPECT_FALSE(Files::itemExists(copy));
    EXPECT_FALSE(Files::itemExists(world.launcher("A.app")));
}

TEST_F(BlockingSymlinksTest, LeaveTheCopyToRootOnlyWhenTheLinkIsGone) {
    link("A.app", copy);
    const std::string said = (world.folder / "said").native();
    world.host.tools.rootferry = world.tool("rootferry", "echo \"$@\" >> " + said + "; exit 1");
    clear(true);
    EXPECT_EQ(contentOf(said), "rm -f " + world.launcher("A.app").native() + "\n");
    EXPECT_TRUE(Files::exists(copy));
}

TEST_F(BlockingSymlinksTest, NeverEmptyWhatALinkOnTheDriveLeadsTo) {
    const fs::path kept = world.makeApp(world.folder / "Users/ada/A.app");
    world.host.tools.rootferry = world.tool("rootferry", "\"$@\"");
    for (const bool useRootferry : {false, true})
        for (const char* end : {"/", "/.", "//", "/./"}) {
            makeLink(world.drive / "x.app", kept);
            link("A.app", (world.drive / "x.app").native() + end);
            clear(useRootferry);
            EXPECT_TRUE(Files::exists(kept / "Contents/Resources/data")) << end;
            EXPECT_FALSE(Files::itemExists(world.drive / "x.app")) << end;
            EXPECT_EQ(world.lines->at(0), lineOf("A.app", (world.drive / "x.app").native() + end));
        }
}

TEST_F(BlockingSymlinksTest, StayWithTheCopyThatHoldsThePackage) {
    const fs::path package = copy / "Contents/Resources/Some.pkg";
    const fs::path throughLink = world.launcher("A.app") / "Contents/Resources/Some.pkg";
    makeFile(package);
    link("A.app", copy);
    for (const fs::path& source : {package, throughLink}) {
        EXPECT_FALSE(clearFor(source));
        EXPECT_THAT(*world.lines, ElementsAre("pre-install-keep-symlink\t" + world.launcher("A.app").native() +
                                              "\t-> " + copy.native()));
        EXPECT_TRUE(Files::exists(throughLink));
    }
}

TEST_F(BlockingSymlinksTest, StayWhereThePackageIsReachedByTheLinkAlone) {
    makeFile(copy / "Some.pkg");
    makeLink(world.drive / "x.app", copy);
    link("A.app", world.drive / "x.app");
    EXPECT_FALSE(clearFor(world.launcher("A.app") / "Some.pkg"));
    EXPECT_TRUE(Files::exists(world.launcher("A.app") / "Some.pkg"));
    EXPECT_FALSE(clearFor(world.drive / "x.app/Some.pkg"));
    EXPECT_TRUE(Files::exists(world.drive / "x.app/Some.pkg"));
}

TEST_F(BlockingSymlinksTest, StayWhenTheirCopyLiesInThePackage) {
    const fs::path package = world.drive / "Some.mpkg";
    const fs::path inner = world.makeApp(package / "Contents/A.app");
    link("A.app", inner);
    EXPECT_FALSE(clearFor(package));
    EXPECT_TRUE(Files::exists(inner));
}

TEST_F(BlockingSymlinksTest, StayWhenTheInstallIsStoppedBeforeTheFirst) {
    link("A.app", copy);
    EXPECT_FALSE(BlockingSymlinks::clear(world.host, world.folder / "Some.pkg", false,
                                         {[&](const std::string&) { world.cancellation.cancel(); }},
                                         world.cancellation));
    EXPECT_TRUE(Files::exists(world.launcher("A.app") / "Contents/Resources/data"));
}

TEST_F(BlockingSymlinksTest, AllGoOnceOneHasGone) {
    link("A.app", copy);
    link("B.app", world.makeApp(world.drive / "B.app"));
    world.host.tools.rootferry = world.tool(
        "rootferry", "\"$@\"; touch " + (world.folder / "begun").native() + "\n" + waitFor(world.folder / "go"));
    std::thread asker([&] {
        EXPECT_TRUE(comesToStand(world.folder / "begun"));
        world.cancellation.cancel();
        makeFile(world.folder / "go");
    });
    EXPECT_TRUE(clear(true));
    asker.join();
    EXPECT_THAT(Files::names(world.folder / "Applications"), IsEmpty());
    EXPECT_FALSE(Files::exists(world.drive / "B.app"));
}

TEST_F(BlockingSymlinksTest, StayWhenTheWayBehindThemChangesMeanwhile) {
    const fs::path kept = world.makeApp(world.folder / "Users/ada/A.app");
    makeFolder(world.drive / "Suite/A.app");
    link("A.app", world.drive / "Suite/A.app");
    BlockingSymlinks::clear(world.host, world.folder / "Some.pkg", false, {[&](const std::string&) {
                                fs::remove_all(world.drive / "Suite");
                                makeLink(world.drive / "Suite", kept.parent_path());
                            }});
    EXPECT_TRUE(Files::exists(kept));
    EXPECT_TRUE(Files::isSymbolicLink(world.launcher("A.app")));
}

TEST_F(BlockingSymlinksTest, KeepTheirCopyWhenItsWayChangesAsTheyGo) {
    const fs::path kept = world.makeApp(world.folder / "Users/ada/A.app");
    const fs::path suite = world.drive / "Suite";
    makeFolder(suite / "A.app");
    link("A.app", suite / "A.app");
    world.host.tools.rootferry =
        world.tool("rootferry", "\"$@\"; if [ ! -h '" + suite.native() + "' ]; then mv '" + suite.native() + "' '" +
                                    suite.native() + ".old'; ln -s '" + kept.parent_path().native() + "' '" +
                                    suite.native() + "'; fi");
    EXPECT_TRUE(clear(true));
    EXPECT_TRUE(Files::exists(kept));
    EXPECT_FALSE(Files::itemExists(world.launcher("A.app")));
}

TEST_F(BlockingSymlinksTest, NeverTakeWhatCannotBeReached) {
    makeLink(world.drive / "loop", "loop");
    makeLink(world.drive / "nowhere", world.folder / "Users/ada/later");
    makeLink(world.drive / "home", world.folder / "Users");
    makeFolder(world.folder / "Users");
    makeFile(world.drive / "file");
    for (const char* place : {"loop/A.app", "loop/x/A.app", "nowhere/A.app", "nowhere/x/A.app", "home/gone/A.app",
                              "file/A.app", "file/x/A.app"})
        EXPECT_FALSE(mayGo(world.drive / place)) << place;
    EXPECT_FALSE(mayGo(world.drive / std::string(300, 'x') / "A.app"));
    EXPECT_TRUE(mayGo(world.drive / "gone/deep/A.app"));
    EXPECT_TRUE(mayGo(world.drive / "loop")) << "the link itself";
}

TEST_F(BlockingSymlinksTest, NeverTakeWhatMayNotBeLookedAt) {
    if (::geteuid() != 0) TARVIK_SKIP_BECAUSE("Only the administrator can become another user.");
    makeFolder(world.drive / "locked/deep");
    fs::permissions(world.folder.path(), fs::perms::all);
    fs::permissions(world.drive / "locked", fs::perms::none);
    ASSERT_EQ(::seteuid(65534), 0);
    const bool isReachable = Files::exists(world.drive);
    const bool mayGoInside = mayGo(world.drive / "locked/A.app");
    const bool mayGoBelow = mayGo(world.drive / "locked/deep/A.app");
    ASSERT_EQ(::seteuid(0), 0);
    EXPECT_TRUE(isReachable);
    EXPECT_FALSE(mayGoInside);
    EXPECT_FALSE(mayGoBelow);
}

TEST_F(BlockingSymlinksTest, NeverTakeAWholeDriveOrOneOfOurFolders) {
    for (const char* name : {"Data", "Folders", "Plugins"}) makeFolder(world.drive / "ExternalTarvik" / name);
    makeFolder(world.drive / "TarvikBackups/one");
    const fs::path volumes = world.folder / "Volumes";
    for (const fs::path& place :
         {volumes, world.drive, world.drive / "", world.drive / "ExternalTarvik", world.drive / "ExternalTarvik/Apps",
          world.drive / "ExternalTarvik/Apps/", world.drive / "./ExternalTarvik//Data",
          world.drive / "ExternalTarvik/Folders", world.drive / "ExternalTarvik/Plugins", world.drive / "TarvikBackups",
          world.drive / "externaltarvik/APPS", world.drive / "Tarvik", world.drive / "Tarvik/Apps", volumes / "Away",
          volumes / "Away/ExternalTarvik", volumes / "Away/TarvikBackups"})
        EXPECT_FALSE(mayGo(place)) << place;
    for (const fs::path& place : {copy, world.drive / "Editor.app", world.drive / "ExternalTarvik/Apps/Suite",
                                  volumes / "Away/ExternalTarvik/Apps/B.app"})
        EXPECT_TRUE(mayGo(place)) << place;
}

TEST_F(BlockingSymlinksTest, NeverTakeWhatOnlyTheirTextPutsOnADrive) {
    const fs::path volumes = world.folder / "Volumes";
    makeFile(world.folder / "Users/ada/A.app/file");
    makeLink(world.drive / "home", world.folder / "Users/ada");
    makeLink(world.drive / "all", world.drive / "ExternalTarvik");
    makeLink(volumes / "Internal", world.folder.path());
    makeLink(world.drive / "apps.app", world.drive / "ExternalTarvik/Apps");
    for (const fs::path& place :
         {world.drive / "../../Users/ada/A.app", world.drive / "x/../ExternalTarvik/Apps/A.app",
          world.drive / "home/A.app", world.drive / "all/Apps", volumes / "Internal/Users/ada/A.app",
          world.drive / "apps.app", world.folder / "VolumesOther/A.app", fs::path("Volumes/Backup/A.app")})
        EXPECT_FALSE(mayGo(place)) << place;
    EXPECT_TRUE(mayGo(world.drive / "all/Apps/A.app"));
}

TEST_F(BlockingSymlinksTest, NeverTakeWhatHoldsAnotherVolume) {
    const fs::path inner = world.drive / "Group/Disk";
    makeFolder(inner / "ExternalTarvik/Apps/B.app");
    world.volumes->list.push_back({.mountPath = inner});
    EXPECT_FALSE(mayGo(inner));
    EXPECT_FALSE(mayGo(world.drive / "Group"));
    EXPECT_FALSE(mayGo(inner / "ExternalTarvik/Apps"));
    EXPECT_TRUE(mayGo(inner / "ExternalTarvik/Apps/B.app"));
}

}  // namespace tarvik::test
