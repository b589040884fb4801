#include "Reports/TOMLFormatter.h"
#include "Reports/TSVFormatter.h"

#include <gtest/gtest.h>

namespace tarvik {
namespace {

InstallerInspection reportedInspection() {
    return {.sourcePath = "/A \"1\"\\.dmg",
            .kind = InstallerKind::dmg,
            .items = {{.id = "/V/E.app",
                       .kind = InstallerKind::app,
                       .path = "/V/E.app",
                       .label = "E.app",
                       .sizeBytes = 5'000'000'000},
                      {.id = "/V/T.pkg", .kind = InstallerKind::pkg, .path = "/V/T.pkg", .label = "T.pkg"}},
            .warnings = {"First.", "Say \"yes\"."},
            .trust = {.status = "disk-image", .details = {"left out"}, .hasScripts = true}};
}

InstallerPlan reportedInstall() {
    return {.sourcePath = "/A.dmg",
            .optionID = "mine",
            .targetDrivePath = "/Volumes/T",
            .actions = {"snapshot-before", "copy-app\t/V/E.app\t/Volumes/T/X/Apps/E.app"},
            .warnings = {"First."},
            .neededBytes = 5'000'000'000};
}

TEST(InstallerTSV, ListsOptions) {
    EXPECT_EQ(TSVFormatter::options({}), "\n");
    EXPECT_EQ(TSVFormatter::options({{.id = "a", .label = "First\tone", .strategy = "s"}, {.id = "b"}}),
              "option\ta\tFirst\tone\ts\noption\tb\t\t\n");
}

TEST(InstallerTSV, TellsAnInspection) {
    EXPECT_EQ(TSVFormatter::inspection(reportedInspection()),
              "inspection\tdmg\t/A \"1\"\\.dmg\nwarning\tFirst.\nwarning\tSay \"yes\".\n"
              "item\tapp\t5000000000\t/V/E.app\nitem\tpkg\t0\t/V/T.pkg\n");
    EXPECT_EQ(TSVFormatter::inspection({}), "inspection\tunknown\t\n");
}

TEST(InstallerTSV, TellsAPlan) {
    EXPECT_EQ(TSVFormatter::plan(reportedInstall()),
              "plan\tmine\t5000000000\t/A.dmg\nwarning\tFirst.\naction\tsnapshot-before\n"
              "action\tcopy-app\t/V/E.app\t/Volumes/T/X/Apps/E.app\n");
}

TEST(InstallerTOML, TellsAnInspection) {
    EXPECT_EQ(TOMLFormatter::inspection(reportedInspection()),
              "source = \"/A \\\"1\\\"\\\\.dmg\"\nkind = \"dmg\"\nwarnings = [\"First.\", \"Say \\\"yes\\\".\"]\n"
              "[trust]\nstatus = \"disk-image\"\nhasScripts = true\nhasPrivilegedPayload = false\n"
              "[[items]]\nkind = \"app\"\npath = \"/V/E.app\"\nlabel = \"E.app\"\nsizeBytes = 5000000000\n"
              "[[items]]\nkind = \"pkg\"\npath = \"/V/T.pkg\"\nlabel = \"T.pkg\"\nsizeBytes = 0\n");
}

TEST(InstallerTOML, TellsAPlan) {
    EXPECT_EQ(TOMLFormatter::plan(reportedInstall()),
              "source = \"/A.dmg\"\noption = \"mine\"\ntargetDrive = \"/Volumes/T\"\nneededBytes = 5000000000\n"
              "warnings = [\"First.\"]\n"
              "actions = [\"snapshot-before\", \"copy-app\t/V/E.app\t/Volumes/T/X/Apps/E.app\"]\n");
    EXPECT_EQ(TOMLFormatter::plan({}),
              "source = \"\"\noption = \"\"\ntargetDrive = \"\"\nneededBytes = 0\nwarnings = []\nactions = []\n");
}

}  // namespace
}  // namespace tarvik
