#include "HealthRepair/HealthRepairTest.h"

#include <utility>
#include <vector>

namespace tarvik {

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using enum HealthRepairStrategy;
using Kind = HealthIssue::Kind;

class HealthRepairChoice : public test::HealthRepairTest {};

}  // namespace

TEST_F(HealthRepairChoice, AreSafeWhereTheyRemoveNothing) {
    const auto safe = [&](Kind kind) { return HealthRepair::safeRepair(world.host, {.kind = kind, .target = "/x"}); };
    EXPECT_EQ(safe(Kind::brokenLauncher), repairBrokenLauncher);
    EXPECT_EQ(safe(Kind::missingSpotlightLaunchers), repairSpotlightLaunchers);
    EXPECT_EQ(safe(Kind::missingTrackedFiles), forgetMissingTrackedFiles);
    for (const Kind kind : {Kind::dangling, Kind::empty, Kind::corrupted, Kind::orphan, Kind::unsafePrefsPlist,
                            Kind::sandboxExternalSymlink})
        EXPECT_EQ(safe(kind), std::nullopt);
    EXPECT_EQ(safe(Kind::reverted), std::nullopt);
    EXPECT_EQ(safe(Kind::signatureBroken), std::nullopt);
    EXPECT_EQ(safe(Kind::healthy), std::nullopt);
}

TEST_F(HealthRepairChoice, RepointNothingButDanglingLinks) {
    test::makeFolder(world.drive / "ExternalTarvik/Apps/Foo.app");
    const fs::path former = world.drive / "Tarvik/Apps/Foo.app";
    EXPECT_EQ(HealthRepair::safeRepair(world.host, {.kind = Kind::dangling, .target = former}), repointDangling);
    EXPECT_EQ(HealthRepair::safeRepair(world.host, {.kind = Kind::brokenLauncher, .target = former}),
              repairBrokenLauncher);
}

TEST_F(HealthRepairChoice, AreMeantWhereThereIsOneAlone) {
    const auto only = [&](Kind kind) { return HealthRepair::onlyRepair(world.host, {.kind = kind}); };
    EXPECT_EQ(only(Kind::dangling), removeDangling);
    EXPECT_EQ(only(Kind::brokenLauncher), repairBrokenLauncher);
    EXPECT_EQ(only(Kind::reverted), std::nullopt);
    EXPECT_EQ(only(Kind::signatureBroken), std::nullopt);
}

TEST(HealthRepairIntent, SaysWhatWillBeDone) {
    const HealthIssue issue{.location = "/Applications/Foo.app", .target = "/drive/Foo.app"};
    const std::vector<std::pair<HealthRepairStrategy, std::string>> intents = {
        {removeDangling, "remove the link"},
        {removeEmpty, "remove the link and move /drive/Foo.app to the Trash"},
        {reclaimReverted, "move /drive/Foo.app to the Trash"},
        {reSymlinkReverted, "move it to the drive again, and the old copy there to the Trash"},
        {removeOrphan, "move it to the Trash"},
        {forgetMissingTrackedFiles, "forget the tracked files that are missing"},
        {repairSpotlightLaunchers, "install the launchers that are missing"},
        {repairBrokenLauncher, "let it open another copy of its app"},
        {restoreUnsafePrefs, "bring /drive/Foo.app back to its place"},
        {restoreSandboxExternal, "copy /drive/Foo.app back to its place"},
        {repointDangling, "let it lead to a copy, of which none is found"}};
    const test::HealthWorld world;
    for (const auto& [strategy, text] : intents) EXPECT_EQ(HealthRepair::intent(world.host, issue, strategy), text);
}

TEST_F(HealthRepairChoice, NamesTheCopyThatALinkWillLeadTo) {
    test::makeFolder(world.drive / "ExternalTarvik/Data/data");
    const HealthIssue issue{.kind = Kind::dangling, .target = world.drive / "Tarvik/Data/data"};
    EXPECT_EQ(HealthRepair::intent(world.host, issue, repointDangling),
              "let it lead to " + (world.drive / "ExternalTarvik/Data/data").native());
    EXPECT_THAT(HealthRepair::choices(world.host, issue), testing::ElementsAre(removeDangling, repointDangling));
    EXPECT_THAT(HealthRepair::choices(world.host, {.kind = Kind::dangling}), testing::ElementsAre(removeDangling));
    EXPECT_THAT(HealthRepair::choices(world.host, {.kind = Kind::reverted}),
                testing::ElementsAre(reclaimReverted, reSymlinkReverted));
    EXPECT_THAT(HealthRepair::choices(world.host, {.kind = Kind::signatureBroken}), testing::IsEmpty());
}

TEST(HealthRepairStrategies, AreOfferedByTheirLabels) {
    const auto label = [](Kind kind) { return HealthRepairStrategies::offers(kind).at(0).label; };
    EXPECT_EQ(label(Kind::dangling), "Remove dead symlink");
    EXPECT_EQ(label(Kind::empty), "Clean up (must reinstall)");
    EXPECT_EQ(label(Kind::corrupted), "Clean up (must reinstall)");
    EXPECT_EQ(label(Kind::orphan), "Delete from SSD");
    EXPECT_EQ(label(Kind::missingTrackedFiles), "Forget stale DB entries");
    EXPECT_EQ(label(Kind::missingSpotlightLaunchers), "Repair Spotlight launchers");
    EXPECT_EQ(label(Kind::brokenLauncher), "Retarget launcher");
    EXPECT_EQ(label(Kind::unsafePrefsPlist), "Restore plist to internal");
    EXPECT_EQ(label(Kind::sandboxExternalSymlink), "Restore to internal disk");
}

TEST(HealthRepairStrategies, EachHasANameByWhichItIsFound) {
    for (int number = 0; number <= static_cast<int>(repointDangling); ++number) {
        const auto strategy = static_cast<HealthRepairStrategy>(number);
        EXPECT_EQ(HealthRepairStrategies::named(HealthRepairStrategies::name(strategy)), strategy);
    }
    EXPECT_EQ(HealthRepairStrategies::name(restoreSandboxExternal), "restoreSandboxExternal");
    EXPECT_EQ(HealthRepairStrategies::named("nonsense"), std::nullopt);
}

TEST(HealthRepairStrategies, RevertedApplicationsHaveTwo) {
    const auto& offers = HealthRepairStrategies::offers(Kind::reverted);
    ASSERT_EQ(offers.size(), 2U);
    EXPECT_EQ(offers[0].label, "Reclaim SSD space");
    EXPECT_EQ(offers[0].strategy, reclaimReverted);
    EXPECT_EQ(offers[1].label, "Re-symlink to SSD");
    EXPECT_EQ(offers[1].strategy, reSymlinkReverted);
    EXPECT_THAT(HealthRepairStrategies::offers(Kind::signatureBroken), IsEmpty());
}

}  // namespace tarvik
