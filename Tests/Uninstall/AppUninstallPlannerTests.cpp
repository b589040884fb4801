#include "Support/Bundles.h"
#include "Support/Tree.h"
#include "Uninstall/AppUninstallPlanner.h"
#include "Uninstall/ScanWorld.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace tarvik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Category = UninstallCategory;

class UninstallPlan : public testing::Test {
protected:
    UninstallPlan() { world.host.tools.mdutil = world.tool("mdutil", "echo 'Indexing enabled.'"); }

    AppUninstallPlan plan(const UninstallSelection& selection = UninstallSelection::everything) const {
        return AppUninstallPlanner::plan(world.host, world.app, selection);
    }
    /// The sum of the sizes of the candidates at these paths.
    static std::int64_t bytesOf(const AppUninstallPlan& plan, const std::vector<fs::path>& paths) {
        std::int64_t bytes = 0;
        for (const auto& candidate : plan.candidates)
            if (std::find(paths.begin(), paths.end(), candidate.path) != paths.end()) bytes += candidate.sizeBytes;
        return bytes;
    }

    test::ScanWorld world;
};

TEST_F(UninstallPlan, OfTheBundleAloneCountsTheBundleAlone) {
    test::makeFile(world.library / "Caches/Editor/data");
    const auto made = plan(UninstallSelection::executableOnly);
    EXPECT_EQ(made.app, world.app);
    EXPECT_EQ(made.candidates.size(), 2U);
    EXPECT_EQ(made.selectedBytes, bytesOf(made, {world.app.bundlePath}));
    EXPECT_GT(made.selectedBytes, 0);
    EXPECT_EQ(made.totalBytes, bytesOf(made, {world.app.bundlePath, world.library / "Caches/Editor"}));
    EXPECT_GT(made.totalBytes, made.selectedBytes);
    EXPECT_THAT(made.warnings, IsEmpty());
}

TEST_F(UninstallPlan, OfEverythingLeavesDaemonsReceiptsDotfilesAndTheCopyOnTheDrive) {
    const fs::path copy = world.drive / "ExternalTarvik/Apps/Editor.app";
    test::makeBundle(copy);
    world.app.externalTargetPath = copy;
    world.answerOfPkgutil("com.acme.editor\\n");
    const fs::path daemon = world.systemLibrary / "LaunchDaemons/com.acme.editor.plist";
    const fs::path systemData = world.systemLibrary / "Application Support/com.acme.editor";
    const fs::path cache = world.library / "Caches/Editor";
    for (const fs::path& path : {daemon, systemData / "data", cache / "data", world.home / ".acmeeditrc"})
        test::makeFile(path);
    const auto made = plan();
    EXPECT_EQ(made.candidates.size(), 7U);
    EXPECT_EQ(made.selectedBytes, bytesOf(made, {world.app.bundlePath, systemData, cache}));
    EXPECT_EQ(made.totalBytes,
              bytesOf(made, {world.app.bundlePath, systemData, cache, copy, daemon, world.home / ".acmeeditrc"}));
    UninstallSelection withCopy = UninstallSelection::everything;
    withCopy.includeExternalTarget = true;
    EXPECT_EQ(plan(withCopy).selectedBytes, bytesOf(made, {world.app.bundlePath, systemData, cache, copy}));
}

TEST_F(UninstallPlan, MeasuresNothingWhereSizesAreLeftOut) {
    const auto made = AppUninstallPlanner::plan(world.host, world.app, UninstallSelection::everything,
                                                RelatedFileScanner::Sizes::leftOut);
    EXPECT_EQ(made.candidates.size(), 1U);
    EXPECT_EQ(made.totalBytes, 0);
    EXPECT_EQ(made.selectedBytes, 0);
}

TEST_F(UninstallPlan, ThatIsCancelledIsEmptyAndAsksNoTool) {
    world.host.tools.mdutil = world.tool("mdutil", "echo 'Indexing disabled.'");
    const Cancellation cancellation;
    cancellation.cancel();
    const auto made = AppUninstallPlanner::plan(world.host, world.app, UninstallSelection::everything,
                                                RelatedFileScanner::Sizes::measured, cancellation);
    EXPECT_THAT(made.candidates, IsEmpty());
    EXPECT_THAT(made.warnings, IsEmpty());
}

TEST_F(UninstallPlan, WarnsInOneOrder) {
    test::makeFile(world.systemLibrary / "PrivilegedHelperTools/com.acme.editor");
    world.host.tools.mdutil = world.tool("mdutil", "echo 'Indexing disabled.'");
    world.app.kind = AppRecordKind::systemRisky;
    world.app.hasSystemExtension = true;
    world.app.isMacAppStore = true;
    const std::string volume = world.folder / "System/Volumes/Data";
    const std::string ofSearch = "Spotlight indexing is disabled for " + volume +
                                 ". Launchpad search may not show new apps. Run: sudo mdutil -i on " + volume;
    EXPECT_THAT(plan().warnings, ElementsAre("Refusing system app uninstall: " + world.app.bundlePath.native(),
                                             "App declares a system extension; review carefully.",
                                             "Mac App Store app; receipt may also need to be forgotten.",
                                             "Launch daemons detected; requires admin authentication.", ofSearch));
    EXPECT_EQ(plan().candidates.size(), 2U) << "what belongs to it is shown all the same";
    world.app = {.bundlePath = world.app.bundlePath,
                 .displayName = "Other",
                 .kind = AppRecordKind::tarvikLauncher,
                 .externalTargetPath = world.drive / "Gone.app"};
    EXPECT_THAT(plan().warnings,
                ElementsAre("Tarvik launcher: external target will only be removed if explicitly included.", ofSearch));
}

TEST_F(UninstallPlan, WarnsOfEachThingForItself) {
    world.app.hasSystemExtension = true;
    EXPECT_THAT(plan().warnings, ElementsAre("App declares a system extension; review carefully."));
    world.app.hasSystemExtension = false;
    world.app.isMacAppStore = true;
    EXPECT_THAT(plan().warnings, ElementsAre("Mac App Store app; receipt may also need to be forgotten."));
    world.app.isMacAppStore = false;
    test::makeFile(world.systemLibrary / "LaunchAgents/com.acme.editor.plist");
    EXPECT_THAT(plan().warnings, IsEmpty()) << "an agent is no daemon";
}

TEST_F(UninstallPlan, WarnsOfNoTargetThatALauncherDoesNotName) {
    world.app.kind = AppRecordKind::tarvikLauncher;
    EXPECT_THAT(plan().warnings, IsEmpty());
    world.app.kind = AppRecordKind::symlink;
    world.app.externalTargetPath = world.drive / "Gone.app";
    EXPECT_THAT(plan().warnings, IsEmpty());
}

TEST_F(UninstallPlan, SaysWhenTheSearchCannotBeAsked) {
    world.host.tools.mdutil = "/nowhere/mdutil";
    EXPECT_THAT(plan().warnings, ElementsAre("Could not check Spotlight indexing; Launchpad visibility may lag."));
}

UninstallCandidate candidateOf(Category category, bool selected, const fs::path& path = "/x") {
    return {.path = path, .category = category, .reason = {}, .defaultSelected = selected};
}

TEST(EffectiveSelection, NarrowsWhatGoesByDefaultAndNeverWidensIt) {
    const AppRecord app;
    UninstallSelection all = UninstallSelection::everything;
    all.includeReceipts = all.includeLaunchDaemons = all.includeExternalTarget = true;
    for (const Category category : allUninstallCategories()) {
        EXPECT_FALSE(AppUninstallPlanner::effectiveSelected(candidateOf(category, false), app, all))
            << textOf(category);
        EXPECT_TRUE(AppUninstallPlanner::effectiveSelected(candidateOf(category, true), app, all)) << textOf(category);
        const bool hasNoField = category == Category::executable || category == Category::installerSession;
        EXPECT_EQ(AppUninstallPlanner::effectiveSelected(candidateOf(category, true), app,
                                                         UninstallSelection::executableOnly),
                  hasNoField)
            << textOf(category);
    }
}

TEST(EffectiveSelection, TakesTheBundleAlwaysAndItsCopyOnlyWhenAskedFor) {
    const AppRecord app = {.bundlePath = "/Applications/E.app",
                           .displayName = "E",
                           .isSymlink = true,
                           .externalTargetPath = "../Drive//E.app"};
    const auto takes = [&](const fs::path& path, bool selected, const UninstallSelection& selection) {
        return AppUninstallPlanner::effectiveSelected(candidateOf(Category::executable, selected, path), app,
                                                      selection);
    };
    UninstallSelection withCopy;
    withCopy.includeExternalTarget = true;
    EXPECT_TRUE(takes("/Applications/E.app", false, UninstallSelection::executableOnly));
    EXPECT_FALSE(takes("/Drive/E.app", true, UninstallSelection::everything));
    EXPECT_TRUE(takes("/Drive/E.app", false, withCopy));
    EXPECT_TRUE(takes("../Drive//E.app", false, withCopy));
    EXPECT_FALSE(takes("/Other/E.app", false, withCopy));
    EXPECT_TRUE(takes("/Other/E.app", true, UninstallSelection::executableOnly));
}

}  // namespace
}  // namespace tarvik
