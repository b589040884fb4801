#include "Platform/Files/Files.h"
#include "Platform/Processes/CommandRunner.h"
#include "StandIns/MadePackages.h"
#include "StandIns/StandInRun.h"
#include "Support/EnvironmentVariable.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <string>

namespace tarvik::test {
namespace {

std::string shell(const std::string& line) {
    const auto result = CommandRunner::run("/bin/sh", {"-c", line});
    EXPECT_EQ(result.status, 0) << line << result.stderr;
    return result.stdout;
}

class PackagesOfOthers : public testing::Test {
protected:
    PackagesOfOthers() {
        makeFolder(machine);
        makeFolder(parts);
        makeFile(tree / "Applications/Editor.app/Contents/Info.plist", "<plist/>");
        makeFile(tree / "Applications/Editor.app/\u00E9\u4E2D", "name");
        makeFile(tree / "empty", "");
        makeFileOfSize(tree / "large", 400'000);
        makeLink(tree / "link", "Applications/Editor.app");
        fs::create_hard_link(tree / "large", tree / "twin");
        fs::permissions(tree / "empty", fs::perms(0640));
        makeFile(parts / "PackageInfo",
                 "<pkg-info identifier=\"com.acme.other\" version=\"3\" install-location=\"/Goal\"/>");
    }

    TemporaryFolder folder;
    const fs::path machine = folder / "machine";
    const fs::path tree = folder / "tree";
    const fs::path parts = folder / "parts";
    const EnvironmentVariable root{"TARVIK_ROOT", machine.native()};
};

TEST_F(PackagesOfOthers, AreInstalledAsTheyWereMade) {
    const std::string inTree = "cd '" + tree.native() + "' && find . | LC_ALL=C sort | ";
    const std::string payload = " > '" + (parts / "Payload").native() + "'";
    for (const std::string& packer :
         {std::string("cpio -o --quiet --format=odc | gzip"), std::string("cpio -o --quiet --format=newc | bzip2"),
          std::string("cpio -o --quiet --format=newc"), std::string("bsdtar -cf - --format=odc -n -T - | xz"),
          std::string("bsdtar -cf - --format=newc -n -T - | gzip")}) {
        shell(inTree + packer + payload);
        shell("rm -f '" + (folder / "Other.pkg").native() + "'; cd '" + parts.native() +
              "' && bsdtar --format=xar -cf '" + (folder / "Other.pkg").native() + "' PackageInfo Payload");
        const auto result = runStandIn("installer", {"-pkg", folder / "Other.pkg", "-target", "/"});
        ASSERT_EQ(result.status, 0) << packer << result.stderr;
        EXPECT_EQ(pictureOf(machine / "Goal"), pictureOf(tree)) << packer;
        EXPECT_EQ(statusOf(machine / "Goal/large").st_ino, statusOf(machine / "Goal/twin").st_ino) << packer;
        EXPECT_EQ(statusOf(machine / "Goal/large").st_nlink, 2U) << packer;
        fs::remove_all(machine);
        makeFolder(machine);
    }
}

TEST_F(PackagesOfOthers, AndThoseMadeHereAreReadByOtherPrograms) {
    const auto package = makePackage(folder / "Editor.pkg", Practice::PackageWriter::component(editorComponent()));
    shell("cd '" + parts.native() + "' && rm PackageInfo && bsdtar -xf '" + package.native() + "'");
    const fs::path goal = folder / "goal";
    makeFolder(goal);
    shell("cd '" + goal.native() + "' && gzip -dc '" + (parts / "Payload").native() + "' | cpio -i --quiet");
    EXPECT_EQ(runStandIn("installer", {"-pkg", package, "-target", "/"}).status, 0);
    EXPECT_EQ(pictureOf(goal / "Applications"), pictureOf(machine / "Applications"));
}

}  // namespace
}  // namespace tarvik::test
