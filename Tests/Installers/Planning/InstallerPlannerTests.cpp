#include "Health/SpotlightHealthCheck.h"
#include "Installers/Planning/InstallerPlanner.h"
#include "Platform/Storage/SizingService.h"
#include "Platform/Text/Json.h"
#include "Support/Bundles.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

/// A machine whose search is in order.
struct PlanWorld : World {
    PlanWorld() { host.tools.mdutil = tool("mdutil", "echo 'Indexing enabled.'"); }

    InstallerPlan planOf(const fs::path& source) const {
        return InstallerPlanner::plan(host, source, option, "/Volumes/Backup");
    }

    InstallerOption option = {.id = "mine", .externalRootName = "Tools", .applicationLinkRoot = "/Applications"};
    /// Where launchers go on this machine.
    std::string applications = (host.root / "Applications").native();
};

TEST(InstallerPlanner, PlansAnApplication) {
    PlanWorld world;
    const fs::path bundle = world.home / "Editor.app";
    makeBundle(bundle);
    EXPECT_EQ(
        world.planOf(bundle),
        (InstallerPlan{.sourcePath = bundle,
                       .optionID = "mine",
                       .targetDrivePath = "/Volumes/Backup",
                       .actions = {fmt::format("copy-app\t{}\t/Volumes/Backup/Tools/Apps/Editor.app", bundle.native()),
                                   fmt::format("launcher-app\t{}/Editor.app\t/Volumes/Backup/Tools/Apps/Editor.app",
                                               world.applications)},
                       .warnings = {},
                       .neededBytes = SizingService::size(world.host, bundle)}));
    EXPECT_GT(world.planOf(bundle).neededBytes, 0);
}

TEST(InstallerPlanner, PlansAPackageWhateverMovesAfterwards) {
    PlanWorld world;
    for (const char* name : {"Tool.pkg", "Tool.mpkg"}) {
        const fs::path package = world.home / name;
        makeFile(package);
        for (const bool moves : {false, true}) {
            world.option.relocateSafeApps = moves;
            EXPECT_THAT(world.planOf(package).actions,
                        ElementsAre("snapshot-before", fmt::format("install-pkg\t{}\t/", package.native()),
                                    "snapshot-after", "receipt-diff", "externalize-safe-new-apps"));
        }
    }
}

TEST(InstallerPlanner, PlansALookAtAScriptAlone) {
    PlanWorld world;
    makeFile(world.home / "run.sh", "#!/bin/sh\n");
    const InstallerPlan plan = world.planOf(world.home / "run.sh");
    EXPECT_THAT(plan.actions, ElementsAre(fmt::format("inspect-contained\t{}", (world.home / "run.sh").native())));
    EXPECT_THAT(plan.warnings, ElementsAre("Shell script — runs arbitrary code with sudo."));
}

TEST(InstallerPlanner, SaysThatAnUntrustedPackageIsBlocked) {
    PlanWorld world;
    const auto warningsOf = [&](const char* name) { return world.planOf(world.home / name).warnings; };
    const auto answer = [&](const char* words) {
        world.host.tools.pkgutil = world.tool("pkgutil", fmt::format("echo '{}'", words));
    };
    answer("Status: no signature");
    EXPECT_THAT(warningsOf("Tool.pkg"),
                ElementsAre("Package signature is not trusted.", "Untrusted packages are blocked."));
    EXPECT_THAT(warningsOf("Tool.mpkg"),
                ElementsAre("Package signature is not trusted.", "Untrusted packages are blocked."));
    EXPECT_THAT(warningsOf("Editor.app"), IsEmpty());
    world.option.allowUntrustedPackages = true;
    EXPECT_THAT(warningsOf("Tool.pkg"), ElementsAre("Package signature is not trusted."));
    world.option.allowUntrustedPackages = false;
    answer("Status: signed");
    EXPECT_THAT(warningsOf("Tool.pkg"), IsEmpty());
}

TEST(InstallerPlanner, WarnsOfTheSearchAtTheEnd) {
    PlanWorld world;
    world.host.tools.mdutil = world.tool("mdutil", "echo 'Indexing disabled.'");
    const auto ofSearch = SpotlightHealthCheck::warnings(world.host);
    ASSERT_EQ(ofSearch.size(), 1U);
    EXPECT_THAT(world.planOf(world.home / "Tool.pkg").warnings,
                ElementsAre("Package signature is not trusted.", "Untrusted packages are blocked.", ofSearch.front()));
}

TEST(InstallerPlanner, HasNothingToDoForWhatCannotBeOpened) {
    PlanWorld world;
    world.host.tools.hdiutil = world.tool("hdiutil", "echo 'no image' >&2; exit 1");
    const InstallerPlan plan = world.planOf(world.home / "Editor.dmg");
    EXPECT_THAT(plan.actions, IsEmpty());
    EXPECT_EQ(plan.warnings.size(), 1U);
    EXPECT_EQ(plan.neededBytes, 0);
}

TEST(InstallerPlanner, PlansTheItemsOfAnImageInTheirOrder) {
    PlanWorld world;
    const fs::path volume = world.folder / "Volume";
    makeBundle(volume / "B.app");
    makeBundle(volume / "A.app");
    makeFileOfSize(volume / "AA.pkg", 20'000);
    world.host.tools.hdiutil = world.tool(
        "hdiutil", fmt::format("cat <<END\n<plist version=\"1.0\"><dict><key>system-entities</key><array><dict>"
                               "<key>mount-point</key><string>{}</string></dict></array></dict></plist>\nEND",
                               volume.native()));
    const InstallerPlan plan = world.planOf(world.home / "Suite.dmg");
    const auto destination = [](const char* name) { return fmt::format("/Volumes/Backup/Tools/Apps/{}", name); };
    EXPECT_THAT(plan.actions,
                ElementsAre(fmt::format("copy-app\t{}\t{}", (volume / "A.app").native(), destination("A.app")),
                            fmt::format("launcher-app\t{}/A.app\t{}", world.applications, destination("A.app")),
                            "snapshot-before", fmt::format("install-pkg\t{}\t/", (volume / "AA.pkg").native()),
                            "snapshot-after", "receipt-diff", "externalize-safe-new-apps",
                            fmt::format("copy-app\t{}\t{}", (volume / "B.app").native(), destination("B.app")),
                            fmt::format("launcher-app\t{}/B.app\t{}", world.applications, destination("B.app"))));
    EXPECT_THAT(plan.warnings, IsEmpty()) << "the package inside is not looked at";
    EXPECT_EQ(plan.neededBytes, SizingService::size(world.host, volume));
}

TEST(InstallerPlanRecord, HoldsEachFieldAndNeedsIt) {
    const InstallerPlan plan = {.sourcePath = "/Downloads/Tool.pkg",
                                .optionID = "mine",
                                .targetDrivePath = "/Volumes/Backup",
                                .actions = {"snapshot-before", "install-pkg\t/Downloads/Tool.pkg\t/"},
                                .warnings = {"Untrusted packages are blocked."},
                                .neededBytes = 4096};
    const nlohmann::json json = Json::encoded(plan);
    EXPECT_EQ(Json::compact(json),
              R"({"actions":["snapshot-before","install-pkg\t/Downloads/Tool.pkg\t/"],"neededBytes":4096,)"
              R"("optionID":"mine","sourcePath":"/Downloads/Tool.pkg","targetDrivePath":"/Volumes/Backup",)"
              R"("warnings":["Untrusted packages are blocked."]})");
    EXPECT_EQ(Json::parsedAs<InstallerPlan>(Json::compact(json)), plan);
    for (const auto& [key, value] : json.items()) {
        auto broken = json;
        broken.erase(key);
        EXPECT_EQ(Json::parsedAs<InstallerPlan>(broken.dump()), std::nullopt) << key;
    }
}

}  // namespace
}  // namespace tarvik
