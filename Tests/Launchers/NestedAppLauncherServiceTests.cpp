#include "Launchers/NestedAppLauncherService.h"
#include "Move/MoverEngine.h"
#include "Platform/Files/Files.h"
#include "Platform/Text/PropertyList.h"
#include "Support/Bundles.h"
#include "Support/OrdinaryUser.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <unordered_set>
#include <vector>

namespace tarvik {

namespace {

using test::contentOf;
using test::makeBundle;
using test::makeLink;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
namespace Service = NestedAppLauncherService;

/// A world with a suite of applications on the drive.
class NestedAppLauncherServiceTest : public testing::Test {
protected:
    NestedAppLauncherServiceTest() {
        world.host.tools.externalAppLauncher = world.folder / "external-app-launcher";
        test::makeFile(world.host.tools.externalAppLauncher, "the program");
        test::makeFolder(applications);
        makeBundle(suite / "Mixer.app", {{"CFBundleName", "The Mixer"}});
        makeBundle(suite / "Tools/Tuner.app");
        makeBundle(suite / "Tools/Deep/Unreachable.app");
        makeBundle(suite / "Mixer.app/Contents/Helper.app");
    }

    std::vector<fs::path> missing() const {
        std::vector<fs::path> launchers;
        for (const auto& candidate : Service::missingCandidates(world.host, applications))
            launchers.push_back(candidate.launcher.filename());
        return launchers;
    }

    std::int64_t installMissing() { return Service::installMissingLaunchers(world.host, applications, reporter); }

    std::string targetOf(const fs::path& launcher) const {
        return contentOf(applications / launcher / "Contents/Resources/ExternalAppTarget.txt");
    }

    /// "moved", or the description of the failure.
    std::string move(const fs::path& item) {
        try {
            MoverEngine::moveAndLink(
                world.host, item, world.drive, false, [](const JobStatus&) {}, [](std::int64_t, std::int64_t) {});
        } catch (const Failure& failure) {
            return failure.description();
        }
        return "moved";
    }

    test::World world;
    fs::path applications = world.folder / "Applications";
    fs::path suite = world.drive / "Suite";
    std::vector<std::string> lines;
    InstallerRunReporter reporter{[this](const std::string& line) { lines.push_back(line); }};
};

}  // namespace

TEST_F(NestedAppLauncherServiceTest, InstallsALauncherForEachApplicationInAMovedFolder) {
    makeLink(applications / "Suite", suite);
    Service::installLaunchers(world.host, applications / "Suite", suite, reporter);
    EXPECT_THAT(Files::names(applications), ElementsAre("Mixer.app", "Suite", "Tuner.app"));
    EXPECT_EQ(targetOf("Mixer.app"), (suite / "Mixer.app").native());
    EXPECT_EQ(targetOf("Tuner.app"), (suite / "Tools/Tuner.app").native());
    EXPECT_EQ(PropertyList::dictionaryAt(applications / "Mixer.app/Contents/Info.plist").text("CFBundleName"),
              "The Mixer");
    EXPECT_EQ(lines.front(),
              "launcher-app\t" + (applications / "Mixer.app").native() + "\t" + (suite / "Mixer.app").native());
}

TEST_F(NestedAppLauncherServiceTest, InstallsNothingForAFolderFromElsewhere) {
    for (const fs::path& source : {world.home / "Suite", world.home / "Applications/Suite", applications / "Sub/Suite",
                                   world.folder / "Applications2/Suite"}) {
        test::makeFolder(source.parent_path());
        makeLink(source, suite);
        Service::installLaunchers(world.host, source, suite, reporter);
        EXPECT_THAT(Files::names(source.parent_path()), ElementsAre("Suite"));
    }
    EXPECT_THAT(lines, IsEmpty());
}

TEST_F(NestedAppLauncherServiceTest, InstallsNothingForABundle) {
    makeLink(applications / "Mixer.app", suite / "Mixer.app");
    makeBundle(suite / "Mixer.app/Direct.app");
    Service::installLaunchers(world.host, applications / "Mixer.app", suite / "Mixer.app", reporter);
    EXPECT_THAT(Files::names(applications), ElementsAre("Mixer.app"));
}

TEST_F(NestedAppLauncherServiceTest, TakesAnUntidyPathOfTheFolder) {
    Service::installLaunchers(world.host, applications / "x/../Suite/", suite / "./", reporter);
    EXPECT_THAT(Files::names(applications), ElementsAre("Mixer.app", "Tuner.app"));
    EXPECT_EQ(targetOf("Tuner.app"), (suite / "Tools/Tuner.app").native());
}

TEST_F(NestedAppLauncherServiceTest, LeavesALauncherWithTheRightTargetAlone) {
    // Every reader of the text takes white space away.
    test::makeLauncher(applications / "Mixer.app", suite / "Mixer.app");
    const std::string picture = test::pictureOf(applications / "Mixer.app");
    Service::installLaunchers(world.host, applications / "Suite", suite, reporter);
    EXPECT_EQ(test::pictureOf(applications / "Mixer.app"), picture);
    EXPECT_FALSE(Files::exists(world.trash->folder));
}

TEST_F(NestedAppLauncherServiceTest, RebuildsALauncherWithAnotherTarget) {
    for (const char* target : {"/Volumes/Old/Mixer.app", ""}) {
        fs::remove_all(applications / "Mixer.app");
        fs::remove_all(world.trash->folder);
        test::makeLauncher(applications / "Mixer.app", target);
        Service::installLaunchers(world.host, applications / "Suite", suite, reporter);
        EXPECT_EQ(targetOf("Mixer.app"), (suite / "Mixer.app").native());
        EXPECT_TRUE(Files::exists(world.trash->folder / "Mixer.app"));
    }
}

TEST_F(NestedAppLauncherServiceTest, BuildsOneLauncherForTwoApplicationsOfOneName) {
    makeBundle(suite / "Old/Mixer.app");
    Service::installLaunchers(world.host, applications / "Suite", suite, reporter);
    EXPECT_THAT(Files::names(applications), ElementsAre("Mixer.app", "Tuner.app"));
    EXPECT_EQ(targetOf("Mixer.app"), (suite / "Mixer.app").native());
    EXPECT_FALSE(Files::exists(world.trash->folder)) << "none was built to be thrown away";
}

TEST_F(NestedAppLauncherServiceTest, LeavesALauncherThatOpensTheSecondOfOneName) {
    makeBundle(suite / "Old/Mixer.app");
    test::makeLauncher(applications / "Mixer.app", suite / "Old/Mixer.app");
    const std::string picture = test::pictureOf(applications / "Mixer.app");
    Service::installLaunchers(world.host, applications / "Suite", suite, reporter);
    EXPECT_EQ(test::pictureOf(applications / "Mixer.app"), picture);
}

TEST_F(NestedAppLauncherServiceTest, NeverReplacesWhatIsNoLauncher) {
    makeBundle(applications / "Mixer.app", {{"CFBundleName", "Real"}});
    makeLink(applications / "Tuner.app", world.drive / "nowhere");
    const std::string picture = test::pictureOf(applications);
    Service::installLaunchers(world.host, applications / "Suite", suite, reporter);
    EXPECT_EQ(test::pictureOf(applications), picture);
    EXPECT_THAT(lines, IsEmpty());
    makeLink(applications / "Suite", suite);
    EXPECT_THAT(missing(), IsEmpty());
}

TEST_F(NestedAppLauncherServiceTest, GoesOnWhenOneLauncherFails) {
    world.trash->refuses = true;
    test::makeFile(applications / ".TarvikTrash", "no folder");
    test::makeLauncher(applications / "Mixer.app", "/elsewhere");
    Service::installLaunchers(world.host, applications / "Suite", suite, reporter);
    EXPECT_EQ(targetOf("Mixer.app"), "/elsewhere\n");
    EXPECT_EQ(targetOf("Tuner.app"), (suite / "Tools/Tuner.app").native());
}

TEST_F(NestedAppLauncherServiceTest, FindsWhatIsMissingBehindLinks) {
    makeLink(applications / "Suite", suite);
    EXPECT_THAT(Service::missingCandidates(world.host, applications),
                ElementsAre(NestedAppLauncherCandidate{applications / "Suite", suite, applications / "Suite/Mixer.app",
                                                       suite / "Mixer.app", applications / "Mixer.app"},
                            NestedAppLauncherCandidate{applications / "Suite", suite, applications / "Suite/Tuner.app",
                                                       suite / "Tools/Tuner.app", applications / "Tuner.app"}));
    EXPECT_EQ(installMissing(), 2);
    EXPECT_THAT(missing(), IsEmpty());
    EXPECT_EQ(installMissing(), 0);
}

TEST_F(NestedAppLauncherServiceTest, ResolvesTheTextOfALinkAgainstTheRoot) {
    makeLink(applications / "Suite", "../Volumes/./Backup/Suite/");
    const auto candidates = Service::missingCandidates(world.host, applications);
    ASSERT_THAT(candidates, SizeIs(2));
    EXPECT_EQ(candidates[0].folderTarget, suite);
    EXPECT_EQ(candidates[0].targetApp, suite / "Mixer.app");
}

TEST_F(NestedAppLauncherServiceTest, PassesOverWhatIsNoLinkedFolder) {
    makeBundle(applications / "Real Suite/Player.app");
    makeLink(applications / "Suite.app", suite);
    makeLink(applications / "Gone", world.drive / "gone");
    makeLink(applications / "File", world.host.tools.externalAppLauncher);
    EXPECT_THAT(missing(), IsEmpty());
    EXPECT_THAT(Service::missingCandidates(world.host, world.folder / "nowhere"), IsEmpty());
}

TEST_F(NestedAppLauncherServiceTest, AsksForNoLauncherWhereALinkLeadsBack) {
    test::makeLauncher(applications / "Editor.app", world.drive / "Editor.app");
    makeLink(applications / "Everything", applications);
    EXPECT_THAT(missing(), IsEmpty());
}

TEST_F(NestedAppLauncherServiceTest, GivesOneLauncherToApplicationsOfOneName) {
    makeBundle(world.drive / "Another/Mixer.app");
    makeLink(applications / "Another", world.drive / "Another");
    makeLink(applications / "Suite", suite);
    EXPECT_THAT(missing(), ElementsAre("Mixer.app", "Tuner.app"));
    EXPECT_EQ(installMissing(), 2);
    EXPECT_EQ(targetOf("Mixer.app"), (world.drive / "Another/Mixer.app").native());
    EXPECT_THAT(missing(), IsEmpty());
    // The launcher of the other one is as good.
    fs::remove_all(applications / "Mixer.app");
    test::makeLauncher(applications / "Mixer.app", suite / "Mixer.app");
    EXPECT_THAT(missing(), IsEmpty());
}

TEST_F(NestedAppLauncherServiceTest, InstallsWhatIsMissingForOneLink) {
    makeBundle(world.drive / "Another/Player.app");
    makeLink(applications / "Another", world.drive / "Another");
    makeLink(applications / "Suite", suite);
    EXPECT_EQ(Service::installMissingLaunchers(world.host, applications / "./Another/", applications, reporter), 1);
    EXPECT_THAT(Files::names(applications), ElementsAre("Another", "Player.app", "Suite"));
    EXPECT_EQ(Service::installMissingLaunchers(world.host, applications / "None", applications, reporter), 0);
}

TEST_F(NestedAppLauncherServiceTest, LogsARepairThatFails) {
    makeLink(applications / "Suite", suite);
    fs::remove(world.host.tools.externalAppLauncher);
    EXPECT_EQ(installMissing(), 0);
    EXPECT_THAT(lines, ElementsAre("launcher-repair-failed\t" + (applications / "Mixer.app").native() +
                                       "\tLauncher binary is missing.",
                                   "launcher-repair-failed\t" + (applications / "Tuner.app").native() +
                                       "\tLauncher binary is missing."));
}

TEST_F(NestedAppLauncherServiceTest, TellsWhatIsMissing) {
    const auto detailOf = [](int count) {
        std::vector<NestedAppLauncherCandidate> candidates;
        for (int number = 1; number <= count; ++number)
            candidates.push_back({.launcher = "/Applications/" + std::to_string(number) + ".app"});
        return Service::detail(candidates);
    };
    const std::string text = "Nested apps need top-level launchers for Spotlight: ";
    EXPECT_EQ(detailOf(0), text);
    EXPECT_EQ(detailOf(1), text + "1.app");
    EXPECT_EQ(detailOf(4), text + "1.app, 2.app, 3.app, 4.app");
    EXPECT_EQ(detailOf(5), text + "1.app, 2.app, 3.app, 4.app (+1 more)");
    EXPECT_EQ(detailOf(6), text + "1.app, 2.app, 3.app, 4.app (+2 more)");
}

TEST_F(NestedAppLauncherServiceTest, TellsCandidatesApart) {
    const NestedAppLauncherCandidate candidate{"/a", "/b", "/c", "/d", "/e"};
    std::unordered_set<NestedAppLauncherCandidate> set = {candidate, candidate};
    for (const auto field : {&NestedAppLauncherCandidate::folderLink, &NestedAppLauncherCandidate::folderTarget,
                             &NestedAppLauncherCandidate::sourceApp, &NestedAppLauncherCandidate::targetApp,
                             &NestedAppLauncherCandidate::launcher}) {
        auto other = candidate;
        other.*field = "/f";
        set.insert(other);
    }
    EXPECT_THAT(set, SizeIs(6));
}

TEST_F(NestedAppLauncherServiceTest, AMoveLeavesLaunchersAndTheWayBackTakesThem) {
    fs::rename(suite, applications / "Suite");
    const std::string picture = test::pictureOf(applications);
    EXPECT_EQ(move(applications / "Suite"), "moved");
    EXPECT_THAT(Files::names(applications), ElementsAre("Mixer.app", "Suite", "Tuner.app"));
    EXPECT_EQ(targetOf("Tuner.app"), (suite / "Tools/Tuner.app").native());
    test::makeLauncher(applications / "Other.app", world.drive / "Other.app");
    MoverEngine::restore(world.host, applications / "Suite");
    EXPECT_THAT(Files::names(applications), ElementsAre("Other.app", "Suite"));
    fs::remove_all(applications / "Other.app");
    EXPECT_EQ(test::pictureOf(applications), picture);
    EXPECT_THAT(Files::names(world.trash->folder), ElementsAre("Mixer.app", "Tuner.app"));
}

TEST_F(NestedAppLauncherServiceTest, AMoveIsDoneAlsoWhenNoLauncherCanBeMade) {
    fs::rename(suite, applications / "Suite");
    fs::remove(world.host.tools.externalAppLauncher);
    EXPECT_EQ(move(applications / "Suite"), "moved");
    EXPECT_EQ(Files::linkText(applications / "Suite"), suite);
    EXPECT_THAT(Files::names(applications), ElementsAre("Suite"));
}

TEST_F(NestedAppLauncherServiceTest, AnApplicationComesBackToThePlaceOfItsLauncher) {
    makeLink(applications / "Suite", suite);
    EXPECT_EQ(installMissing(), 2);
    const std::string picture = test::pictureOf(suite / "Mixer.app");
    MoverEngine::restore(world.host, applications / "Mixer.app");
    EXPECT_EQ(test::pictureOf(applications / "Mixer.app"), picture);
    EXPECT_FALSE(Files::exists(suite / "Mixer.app"));
    EXPECT_THAT(missing(), IsEmpty());
}

}  // namespace tarvik
