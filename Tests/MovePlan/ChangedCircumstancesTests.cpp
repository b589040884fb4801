// What changes between the proposal of a move and its run, or in the middle of the run: the drive, the bundle, the
// application.
#include "Discovery/AppScanner.h"
#include "MovePlan/AppMove.h"
#include "MovePlan/MoveRun.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/ToolTable.h"
#include "Records/HealthManifest.h"
#include "Support/Bundles.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tarvik::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::StartsWith;

/// Applications of a small machine on their way to its drive.
class ChangedCircumstances : public testing::Test {
protected:
    ChangedCircumstances() : ChangedCircumstances(fs::path()) {}
    explicit ChangedCircumstances(const fs::path& drive) : world(drive) { world.volumes->list[0].isBrowsable = true; }

    fs::path bundle(const std::string& name) const { return applications / (name + ".app"); }

    /// The move of new applications of these names, to which the user has agreed.
    AppMove::Plan agreed(const std::vector<std::string>& names) {
        std::vector<AppEntry> entries;
        for (const auto& name : names) {
            makeBundle(bundle(name));
            makeFileOfSize(bundle(name) / "Contents/Resources/data", 5'000);
            entries.push_back(AppScanner::metadataEntry(world.host, bundle(name)).value());
            pictures.push_back(pictureOf(bundle(name)));
        }
        return AppMove::propose(world.host, entries, world.driveInfo(), true);
    }

    /// Runs the jobs. @returns for each "done" or why it failed.
    std::vector<std::string> run(const AppMove::Plan& proposal, bool quitRunning = false) {
        std::vector<std::string> ends(proposal.jobs.size());
        tarvik::MoveRun::run(
            world.host, proposal.jobs, proposal.drive.mountPath, quitRunning,
            [&](std::size_t index, const JobStatus& status) {
                if (const auto* failed = status.get<JobStatus::Failed>()) ends[index] = failed->description;
                if (status == JobStatus::done()) ends[index] = "done";
                if (also) also(index, status);
            },
            [](std::size_t, const ByteProgress&) {});
        return ends;
    }

    /// The `index`th application stands in its place as it was.
    bool isHome(const std::string& name, std::size_t index) const {
        return !Files::isSymbolicLink(bundle(name)) && pictureOf(bundle(name)) == pictures[index];
    }
    std::vector<std::string> remembered() const {
        std::vector<std::string> names;
        for (const auto& entry : HealthManifest::load(world.host)) names.push_back(entry.sourcePath.filename());
        return names;
    }

    World world;
    fs::path applications = world.folder / "Applications";
    fs::path onDrive = world.drive / "ExternalTarvik/Apps";
    std::vector<std::string> pictures;
    /// Called with every status of a run.
    std::function<void(std::size_t, const JobStatus&)> also;
};

/// Made before the world that has it for its drive; nothing where there can be none.
struct Mounted {
    fs::path place() const { return volume ? volume->path() : fs::path(); }

    TemporaryFolder mounts;
    std::optional<RealVolume> volume = RealVolume::unavailableReason(RealVolume::Kind::memory)
                                           ? std::nullopt
                                           : std::optional(RealVolume::memory(mounts.path(), 4'000'000));
};

/// The same with a drive that is a real volume.
class ChangedDrive : private Mounted, public ChangedCircumstances {
protected:
    ChangedDrive() : ChangedCircumstances(place()) {}
    void SetUp() override { TARVIK_NEEDS_MEMORY_VOLUMES(); }

    /// A shell line that unplugs the drive.
    std::string unplugging() const { return RealVolume::unplugging(world.drive); }
    /// One that plugs another drive in at the same place.
    std::string plugging() const { return RealVolume::plugging(world.drive, 4'000'000); }
};

}  // namespace

TEST_F(ChangedCircumstances, ADriveThatTakesTheNameOfTheChosenOneGetsNothing) {
    const auto proposal = agreed({"Editor"});
    fs::rename(world.drive, world.folder / "unplugged");
    makeFolder(world.drive);
    EXPECT_THAT(run(proposal),
                ElementsAre("Target drive disconnected. Another drive is at " + world.drive.native() + " now."));
    EXPECT_TRUE(isHome("Editor", 0));
    EXPECT_THAT(Files::names(world.drive), IsEmpty());
    EXPECT_THAT(remembered(), IsEmpty());
}

TEST_F(ChangedCircumstances, ADriveIsKnownByItsIdentifierWhereThereIsOne) {
    world.volumes->list[0].identifier = "A";
    const auto proposal = agreed({"Editor"});
    world.volumes->list[0].identifier = "B";
    EXPECT_THAT(run(proposal), ElementsAre(StartsWith("Target drive disconnected. Another drive is at ")));
    EXPECT_TRUE(isHome("Editor", 0));
    // It has another number when it comes back, but is the same.
    world.volumes->list[0].identifier = "A";
    fs::rename(world.drive, world.folder / "unplugged");
    makeFolder(world.drive);
    EXPECT_THAT(run(proposal), ElementsAre("done"));
}

TEST_F(ChangedCircumstances, ADriveThatComesBetweenGetsNothing) {
    const auto volumes = world.volumes->list;
    world.volumes->list.clear();
    const auto proposal = agreed({"Editor"});
    EXPECT_THAT(run(proposal), ElementsAre("Target drive disconnected"));
    world.volumes->list = volumes;
    EXPECT_THAT(run(proposal), ElementsAre("Target drive disconnected")) << "nobody knows which one was meant";
    EXPECT_TRUE(isHome("Editor", 0));
}

TEST_F(ChangedDrive, ThatGoesAfterTheQuestionTakesNothing) {
    const auto proposal = agreed({"Editor"});
    ASSERT_EQ(std::system(unplugging().c_str()), 0);
    world.volumes->list.clear();
    EXPECT_THAT(run(proposal), ElementsAre("Target drive disconnected"));
    EXPECT_TRUE(isHome("Editor", 0));
    EXPECT_THAT(Files::names(world.drive), IsEmpty());
}

TEST_F(ChangedDrive, ThatIsSwappedAfterTheQuestionTakesNothing) {
    const auto proposal = agreed({"Editor"});
    ASSERT_EQ(std::system((unplugging() + " && " + plugging()).c_str()), 0);
    EXPECT_THAT(run(proposal), ElementsAre(StartsWith("Target drive disconnected. Another drive is at ")));
    EXPECT_TRUE(isHome("Editor", 0));
    EXPECT_THAT(Files::names(world.drive), IsEmpty());
}

TEST_F(ChangedDrive, ThatGoesInTheMiddleOfTheSecondJobOfFiveLosesNothing) {
    const auto proposal = agreed({"One", "Two", "Three", "Four", "Five"});
    // The first copy is kept by a second look at the drive, for the time when it has gone.
    const auto look = RealVolume::viewOf(world.drive, world.folder.path());
    if (!look) GTEST_SKIP() << "This system shows no volume twice.";
    world.withDitto("case $2 in *Two.app) " + unplugging() + "; esac; exec '" + systemTools().ditto.native() +
                    "' \"$@\"");
    also = [&](std::size_t index, const JobStatus& status) {
        if (index == 1 && status.isFinal()) world.volumes->list.clear();
    };
    EXPECT_THAT(run(proposal),
                ElementsAre("done", "Verification failed: The target drive was disconnected while it was written to.",
                            "Target drive disconnected", "Target drive disconnected", "Target drive disconnected"));
    EXPECT_EQ(pictureOf(*look / "ExternalTarvik/Apps/One.app"), pictures[0]);
    EXPECT_TRUE(isHome("Two", 1) && isHome("Three", 2) && isHome("Four", 3) && isHome("Five", 4));
    EXPECT_THAT(remembered(), ElementsAre("One.app"));
}

TEST_F(ChangedDrive, ThatIsSwappedInTheMiddleOfAJobTakesNoMore) {
    const auto proposal = agreed({"One", "Two"});
    world.withDitto(unplugging() + " && " + plugging() + "; exec '" + systemTools().ditto.native() + "' \"$@\"");
    EXPECT_THAT(run(proposal), ElementsAre(MatchesRegex("Copy failed: .*|Verification failed: .*"),
                                           StartsWith("Target drive disconnected. Another drive is at ")));
    EXPECT_TRUE(isHome("One", 0) && isHome("Two", 1));
    EXPECT_FALSE(Files::itemExists(onDrive / "One.app"));
    EXPECT_THAT(remembered(), IsEmpty());
}

TEST_F(ChangedCircumstances, AnApplicationThatIsStartedDuringItsMoveStays) {
    const auto proposal = agreed({"Editor", "Player"});
    also = [&](std::size_t index, const JobStatus& status) {
        if (index == 0 && status == JobStatus::verifying())
            world.applications->list.push_back({.bundlePath = bundle("Editor")});
    };
    EXPECT_THAT(run(proposal),
                ElementsAre("App is running: Editor.app. Quit it first, or pass --quit-running.", "done"));
    EXPECT_TRUE(isHome("Editor", 0));
    EXPECT_THAT(Files::names(onDrive), ElementsAre("Player.app"));
    EXPECT_THAT(remembered(), ElementsAre("Player.app"));
}

TEST_F(ChangedCircumstances, AnApplicationThatWillNotQuitStaysAndOthersMove) {
    const auto proposal = agreed({"Editor", "Player"});
    world.applications->list.push_back({.bundlePath = bundle("Editor")});
    EXPECT_THAT(run(proposal, true),
                ElementsAre("App is running: Editor.app. Quit it first, or pass --quit-running.", "done"));
    EXPECT_FALSE(world.applications->terminated.empty());
    EXPECT_THAT(world.applications->forced, IsEmpty());
    EXPECT_TRUE(isHome("Editor", 0));
    EXPECT_TRUE(Files::isSymbolicLink(bundle("Player")));
}

TEST_F(ChangedCircumstances, ANewVersionOfABundleMovesAsItIs) {
    const auto proposal = agreed({"Editor"});
    fs::remove_all(bundle("Editor"));
    makeBundle(bundle("Editor"));
    makeFileOfSize(bundle("Editor") / "Contents/Resources/more", 90'000);
    const std::string picture = pictureOf(bundle("Editor"));
    EXPECT_THAT(run(proposal), ElementsAre("done"));
    EXPECT_EQ(pictureOf(onDrive / "Editor.app"), picture);
}

TEST_F(ChangedCircumstances, ABundleThatIsReplacedWhileItIsCopiedStays) {
    const auto proposal = agreed({"Editor"});
    const fs::path next = world.folder / "Editor 2.app";
    makeBundle(next);
    makeFile(next / "Contents/Resources/data", "the next version");
    const std::string picture = pictureOf(next);
    const std::string place = "'" + bundle("Editor").native() + "'";
    // The update has as many items as what it replaces, and comes when that has been copied.
    world.withDitto("cp -aT \"$2\" \"$3\" && mv " + place + " '" + (world.folder / "old").native() + "' && mv '" +
                    next.native() + "' " + place);
    EXPECT_THAT(run(proposal), ElementsAre(StartsWith("Verification failed: ")));
    EXPECT_EQ(pictureOf(bundle("Editor")), picture);
    EXPECT_FALSE(Files::itemExists(onDrive / "Editor.app"));
    EXPECT_THAT(remembered(), IsEmpty());
}

TEST_F(ChangedCircumstances, ABundleThatIsReplacedByItsOwnKindWhileItIsCopiedStays) {
    const auto proposal = agreed({"Editor"});
    const fs::path next = world.folder / "Editor 2.app";
    fs::copy(bundle("Editor"), next, fs::copy_options::recursive);
    makeFileOfSize(next / "Contents/Resources/data", 5'000, 7);  // Other bytes, and as many.
    const std::string picture = pictureOf(next);
    const std::string place = "'" + bundle("Editor").native() + "'";
    world.withDitto("cp -aT \"$2\" \"$3\" && mv " + place + " '" + (world.folder / "old").native() + "' && mv '" +
                    next.native() + "' " + place);
    EXPECT_THAT(run(proposal), ElementsAre("Verification failed: Editor.app was changed while it was copied."));
    EXPECT_EQ(pictureOf(bundle("Editor")), picture);
}

TEST_F(ChangedCircumstances, ABundleThatHasGoneFailsAlone) {
    const auto proposal = agreed({"Editor", "Player"});
    fs::remove_all(bundle("Editor"));
    EXPECT_THAT(run(proposal), ElementsAre("Source path no longer exists.", "done"));
}

TEST_F(ChangedCircumstances, ABundleThatSomeoneElseHasMovedToAnotherDriveStaysThere) {
    const auto proposal = agreed({"Editor"});
    const fs::path other = world.folder / "Volumes/Other/ExternalTarvik/Apps/Editor.app";
    makeFolder(other.parent_path());
    fs::rename(bundle("Editor"), other);
    makeLink(bundle("Editor"), other);
    EXPECT_THAT(run(proposal), ElementsAre("Editor.app is already a symlink to " + other.native() + "."));
    EXPECT_EQ(Files::linkText(bundle("Editor")), other);
    EXPECT_EQ(pictureOf(other), pictures[0]);
    EXPECT_FALSE(Files::itemExists(onDrive / "Editor.app"));
}

TEST_F(ChangedCircumstances, AMoveIsDoneThoughItsRecordCannotBeWritten) {
    makeFolder(HealthManifest::file(world.host) / "in the way");
    const auto proposal = agreed({"Editor"});
    EXPECT_THAT(run(proposal), ElementsAre("done"));
    EXPECT_EQ(pictureOf(onDrive / "Editor.app"), pictures[0]);
    EXPECT_EQ(Files::linkText(bundle("Editor")), onDrive / "Editor.app");
    EXPECT_TRUE(Files::exists(HealthManifest::file(world.host) / "in the way"));
    // The list tells the truth all the same.
    EXPECT_TRUE(AppScanner::metadataEntry(world.host, bundle("Editor"))->isAlreadySymlinked);
}

}  // namespace tarvik::test
