#include "Health/HealthWorld.h"
#include "HealthRepair/BrokenLauncherRepairService.h"
#include "Support/Bundles.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {

namespace {

using testing::StartsWith;
namespace Service = BrokenLauncherRepairService;

PropertyList::Dictionary identified(const std::string& identifier) {
    return {{"CFBundleIdentifier", identifier}};
}

class BrokenLauncherRepair : public testing::Test {
protected:
    BrokenLauncherRepair() {
        world.host.tools.codesign =
            world.tool("codesign", "echo \"$@\" >> '" + (world.folder / "calls").native() + "'");
        world.host.tools.lsregister =
            world.tool("lsregister", "echo \"$@\" >> '" + (world.folder / "calls").native() + "'");
        test::makeLauncher(launcher, "/nowhere/Foo.app", identified("org.example.foo.externallauncher"));
    }
    std::string opened() const { return test::contentOf(launcher / "Contents/Resources/ExternalAppTarget.txt"); }

    test::HealthWorld world;
    const fs::path launcher = world.applications / "Foo.app";
};

}  // namespace

TEST_F(BrokenLauncherRepair, LetsItOpenAnotherCopyOfItsApplication) {
    const fs::path copy = world.home / "Applications/Folder/Foo Copy.app";
    test::makeBundle(copy, identified("org.example.foo"));
    EXPECT_EQ(Service::repair(world.host, launcher), "Retargeted Foo.app to " + copy.native() + ".");
    EXPECT_EQ(opened(), copy.native());
    EXPECT_EQ(test::contentOf(world.folder / "calls"),
              "--force --sign - --timestamp=none " + launcher.native() + "\n-f " + launcher.native() + "\n");
}

TEST_F(BrokenLauncherRepair, SaysWhenThereIsNoOtherCopy) {
    EXPECT_EQ(Service::repair(world.host, launcher),
              "Could not retarget Foo.app. Reinstall the app or remove the broken launcher.");
    EXPECT_EQ(opened(), "/nowhere/Foo.app\n");
    EXPECT_FALSE(fs::exists(world.folder / "calls"));
}

TEST_F(BrokenLauncherRepair, SaysWhenItCannotBeWritten) {
    test::makeBundle(world.applications / "Other.app", identified("org.example.foo"));
    const fs::path file = launcher / "Contents/Resources/ExternalAppTarget.txt";
    fs::remove(file);
    test::makeFile(file / "not a file");
    EXPECT_THAT(Service::repair(world.host, launcher), StartsWith("Could not retarget Foo.app: Could not "));
    EXPECT_FALSE(fs::exists(world.folder / "calls"));
}

TEST_F(BrokenLauncherRepair, PrefersTheApplicationsOfTheSystemAndTheFirstByName) {
    for (const fs::path& copy :
         {world.home / "Applications/A.app", world.applications / "Z.app", world.applications / "B/C/M.app"})
        test::makeBundle(copy, identified("org.example.foo"));
    EXPECT_EQ(Service::replacementTarget(world.host, launcher), world.applications / "B/C/M.app");
}

TEST_F(BrokenLauncherRepair, TakesNoLauncherAndNoOtherApplication) {
    test::makeLauncher(world.applications / "Marked.app", "/x", identified("org.example.foo"));
    test::makeBundle(world.applications / "Named.app", identified("org.example.foo.externallauncher"));
    test::makeBundle(world.applications / "Other.app", identified("org.example.bar"));
    test::makeBundle(world.applications / "Without.app");
    test::makeFile(world.applications / "Damaged.app/Contents/Info.plist", "no list");
    test::makeFolder(world.applications / "Folder.app/Contents/Info.plist");
    test::makeBundle(world.applications / "1/2/3/Deep.app", identified("org.example.foo"));
    EXPECT_EQ(Service::replacementTarget(world.host, launcher), std::nullopt);
}

TEST_F(BrokenLauncherRepair, GoesByTheWholeIdentifierWithoutTheSuffix) {
    const fs::path plain = world.applications / "Plain.app";
    test::makeLauncher(plain, "/nowhere", identified("org.example.plain"));
    test::makeBundle(world.applications / "Real.app", identified("org.example.plain"));
    EXPECT_EQ(Service::replacementTarget(world.host, plain), world.applications / "Real.app");
    test::makeBundle(world.applications / "Self.app", identified("org.example.self"));
    EXPECT_EQ(Service::replacementTarget(world.host, world.applications / "Self.app"), std::nullopt) << "no other one";
    test::makeLauncher(plain, "/nowhere");
    EXPECT_EQ(Service::replacementTarget(world.host, plain), std::nullopt);
}

TEST_F(BrokenLauncherRepair, TakesEverySuffixOutOfTheIdentifier) {
    const fs::path copy = world.home / "Applications/Foo.app";
    test::makeBundle(copy, identified("org.example.foo"));
    for (const char* identifier :
         {"org.example.foo.externallauncher.externallauncher", "org.externallauncher.example.externallauncher.foo"}) {
        test::makeLauncher(launcher, "/nowhere/Foo.app", identified(identifier));
        EXPECT_EQ(Service::replacementTarget(world.host, launcher), copy) << identifier;
    }
}

}  // namespace tarvik
