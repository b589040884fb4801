#include "MovePlan/MoveRun.h"
#include "Platform/Files/Files.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik::test {

namespace {

/// Three folders to move.
class MoveRunTest : public testing::Test {
protected:
    MoveRunTest() {
        for (const char* name : {"One", "Two", "Three"}) {
            makeFile(world.home / name / "file", name);
            jobs.emplace_back(name, world.home / name, world.foldersOnDrive() / name, JobStatus::pending(), 1, 0);
        }
    }

    void run(const std::function<void(std::size_t, const JobStatus&)>& also = {}) {
        tarvik::MoveRun::run(
            world.host, jobs, world.drive, false,
            [&](std::size_t index, const JobStatus& status) {
                history[index].push_back(status);
                jobs[index].status = status;
                if (also) also(index, status);
            },
            [](std::size_t, const ByteProgress&) {}, stop);
    }

    World world;
    Cancellation stop;
    std::vector<MoveJob> jobs;
    std::vector<JobStatus> history[3];
};

}  // namespace

TEST_F(MoveRunTest, TakesEachJobThroughItsLife) {
    run();
    for (const auto& life : history)
        EXPECT_EQ(life, (std::vector{JobStatus::copying(0), JobStatus::verifying(), JobStatus::linking(),
                                     JobStatus::done()}));
    EXPECT_EQ(tarvik::MoveRun::summary(jobs).text, "Moved 3 items.");
    EXPECT_FALSE(tarvik::MoveRun::summary(jobs).hasFailures);
}

TEST_F(MoveRunTest, KeepsTheMachineAwakeFromTheFirstJobToTheLast) {
    world.withDitto("[ \"$(basename \"$2\")\" != Two ] || exit 1; cp -aT \"$2\" \"$3\"");
    run([this](std::size_t, const JobStatus&) { EXPECT_EQ(world.sleepBlocker->holds, 1); });
    EXPECT_EQ(jobs[1].status, JobStatus::failed("Copy failed: ditto failed: exit 1"));
    EXPECT_EQ(world.sleepBlocker->holds, 0);
    EXPECT_EQ(world.sleepBlocker->reasons, std::vector<std::string>{"Items are being moved to a drive"});
}

TEST_F(MoveRunTest, KeepsNoMachineAwakeOnceItIsStopped) {
    run([this](std::size_t, const JobStatus&) { stop.cancel(); });
    EXPECT_EQ(world.sleepBlocker->holds, 0);
    EXPECT_EQ(jobs[2].status, JobStatus::pending());
}

TEST_F(MoveRunTest, NeedsNoMachineThatSleeps) {
    world.host.sleepBlocker = nullptr;
    run();
    EXPECT_EQ(jobs[2].status, JobStatus::done());
}

TEST_F(MoveRunTest, KeepsTheDriveUntilItsItemIsMoved) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    auto volume = RealVolume::memory(world.folder.path(), megabyte);
    world.volumes->list.push_back({.mountPath = volume.path(), .name = "Real", .totalBytes = 0, .availableBytes = 0});
    std::vector<MoveJob> one = {
        MoveJob("One", world.home / "One", volume / "ExternalTarvik/Folders/One", JobStatus::pending(), 1, 0)};
    tarvik::MoveRun::run(world.host, one, volume.path(), false,
                         [&](std::size_t, const JobStatus& status) {
                             EXPECT_TRUE(status.isFinal() || !volume.eject());
                             one[0].status = status;
                         },
                         {});
    EXPECT_EQ(one[0].status, JobStatus::done());
    EXPECT_TRUE(volume.eject());
}

TEST_F(MoveRunTest, NeedsNobodyWhoListens) {
    world.withDitto("sleep 0.7; cp -aT \"$2\" \"$3\"");
    tarvik::MoveRun::run(world.host, {jobs[0]}, world.drive, false, {}, {});
    EXPECT_EQ(Files::linkText(jobs[0].source), jobs[0].destination);
}

TEST_F(MoveRunTest, LeavesALinkThatHasTakenAnItemsPlace) {
    fs::rename(jobs[1].source, world.drive / "Elsewhere");
    makeLink(jobs[1].source, world.drive / "Elsewhere");
    run();
    EXPECT_EQ(jobs[1].status,
              JobStatus::failed("Two is already a symlink to " + (world.drive / "Elsewhere").native() + "."));
    EXPECT_EQ(jobs[2].status, JobStatus::done());
    EXPECT_EQ(Files::linkText(jobs[1].source), world.drive / "Elsewhere");
    EXPECT_FALSE(Files::itemExists(jobs[1].destination));
}

TEST_F(MoveRunTest, LeavesWhatStandsInAFolderOfApplicationsThatHasBeenMoved) {
    const auto applications = world.folder / "Applications";
    makeFile(world.drive / "Suite/Mixer.app/Contents/Info.plist");
    makeFolder(applications);
    makeLink(applications / "Suite", world.drive / "Suite");
    jobs = {MoveJob("Mixer", applications / "Suite/Mixer.app", world.drive / "ExternalTarvik/Apps/Mixer.app",
                    JobStatus::pending(), 1, 0)};
    run();
    EXPECT_EQ(jobs[0].status, JobStatus::failed("Mixer.app stays: it has been moved by now."));
    EXPECT_TRUE(Files::isFolder(world.drive / "Suite/Mixer.app"));
}

TEST_F(MoveRunTest, LeavesWhatAnotherItemHasTakenToTheDrive) {
    makeFile(world.home / "One/inner/file");
    jobs[1] = MoveJob("inner", world.home / "One/inner", world.foldersOnDrive() / "inner", JobStatus::pending(), 1, 0);
    run();
    EXPECT_EQ(jobs[0].status, JobStatus::done());
    EXPECT_EQ(jobs[1].status, JobStatus::failed("inner stays: it has been moved by now."));
    EXPECT_TRUE(Files::isFolder(world.foldersOnDrive() / "One/inner"));
    EXPECT_FALSE(Files::isSymbolicLink(world.foldersOnDrive() / "One/inner"));
}

TEST_F(MoveRunTest, CopiesNothingOfWhatCouldNotBeRemoved) {
    makeSocket(world.home / "Two/socket");
    run();
    EXPECT_THAT(history[1],
                testing::ElementsAre(JobStatus::failed("Two can't be moved: " + (world.home / "Two/socket").native() +
                                                       " is a socket, which no copy can hold.")));
    EXPECT_EQ(jobs[2].status, JobStatus::done());
    EXPECT_FALSE(Files::itemExists(world.foldersOnDrive() / "Two"));
    EXPECT_FALSE(Files::itemExists(world.trash->folder));
}

TEST_F(MoveRunTest, CopiesNothingThatTheDriveCannotHold) {
    makeLink(jobs[1].source / "link", "file");
    for (MoveJob& job : jobs) job.drive = world.driveInfo();
    jobs[1].drive->keepsLinks = false;
    run();
    EXPECT_EQ(jobs[0].status, JobStatus::done());
    EXPECT_EQ(
        jobs[1].status,
        JobStatus::failed("Two does not fit on " + world.driveInfo().name + ": " + (jobs[1].source / "link").native() +
                          " is a symlink, and its file system holds none. Choose another drive."));
    EXPECT_EQ(history[1].size(), 1U);
}

TEST_F(MoveRunTest, GoesOnAfterAFailedJob) {
    makeFile(world.foldersOnDrive() / "Two/taken");
    run();
    EXPECT_EQ(jobs[1].status, JobStatus::failed("Destination already exists."));
    EXPECT_EQ(jobs[2].status, JobStatus::done());
    EXPECT_EQ(tarvik::MoveRun::summary(jobs).text, "Completed with 1 failure.");
}

TEST_F(MoveRunTest, BeginsNothingMoreOnceItIsCancelled) {
    run([this](std::size_t index, const JobStatus& status) {
        if (index == 1 && status == JobStatus::copying(0)) stop.cancel();
    });
    EXPECT_EQ(jobs[0].status, JobStatus::done());
    EXPECT_EQ(jobs[1].status, JobStatus::done()) << "the job that is under way goes on to its end";
    EXPECT_EQ(jobs[2].status, JobStatus::pending());
    EXPECT_TRUE(history[2].empty());
    EXPECT_EQ(contentOf(world.home / "Three/file"), "Three");
}

TEST_F(MoveRunTest, FailsEveryJobAfterTheDriveHasGone) {
    run([this](std::size_t index, const JobStatus& status) {
        if (index == 1 && status == JobStatus::copying(0)) {
            fs::rename(world.drive, world.folder / "unplugged");
            makeFile(world.folder / "Volumes/Backup", "");  // Nothing can be made where the drive stood.
            world.volumes->list.clear();
        }
    });
    EXPECT_EQ(jobs[0].status, JobStatus::done());
    EXPECT_TRUE(jobs[1].status.is<JobStatus::Failed>());
    EXPECT_EQ(jobs[2].status, JobStatus::failed("Target drive disconnected"));
    EXPECT_EQ(tarvik::MoveRun::summary(jobs).text, "Completed with 2 failures.");
    EXPECT_EQ(contentOf(world.home / "Two/file"), "Two");
    EXPECT_EQ(contentOf(world.home / "Three/file"), "Three");
}

TEST_F(MoveRunTest, IsNotFooledByTheEmptyFolderOfADriveThatHasGone) {
    world.volumes->list.clear();
    run();
    EXPECT_EQ(jobs[0].status, JobStatus::failed("Target drive disconnected"));
    EXPECT_TRUE(Files::names(world.drive).empty());
}

TEST(MoveRunSummary, CountsInWords) {
    const auto jobsWith = [](int done, int failed) {
        std::vector<MoveJob> jobs;
        for (int index = 0; index < done; ++index) jobs.emplace_back("a", "/a", "/b", JobStatus::done(), 0, 0);
        for (int index = 0; index < failed; ++index) jobs.emplace_back("a", "/a", "/b", JobStatus::failed("x"), 0, 0);
        return jobs;
    };
    EXPECT_EQ(tarvik::MoveRun::summary(jobsWith(1, 0)).text, "Moved 1 item.");
    EXPECT_EQ(tarvik::MoveRun::summary(jobsWith(2, 0)).text, "Moved 2 items.");
    EXPECT_EQ(tarvik::MoveRun::summary(jobsWith(2, 1)).text, "Completed with 1 failure.");
    EXPECT_EQ(tarvik::MoveRun::summary(jobsWith(0, 2)).text, "Completed with 2 failures.");
}

TEST(MoveRunProgress, NeverExceedsTheWholeNorShrinksTheTotal) {
    MoveJob job("a", "/a", "/b", JobStatus::copying(0), 100, 0);
    tarvik::MoveRun::applyProgress(job, {30, 0});
    EXPECT_EQ(job.status, JobStatus::copying(0));
    EXPECT_EQ(job.bytesTotal, 100);
    tarvik::MoveRun::applyProgress(job, {50, 200});
    EXPECT_EQ(job.status, JobStatus::copying(0.25));
    EXPECT_EQ(job.bytesTotal, 200);
    EXPECT_EQ(job.bytesCopied, 50);
    tarvik::MoveRun::applyProgress(job, {150, 100});
    EXPECT_EQ(job.status, JobStatus::copying(1));
    EXPECT_EQ(job.bytesTotal, 200);
}

TEST(MoveRunProgress, OfACopyThatIsOverIsIgnored) {
    for (const auto& status :
         {JobStatus::verifying(), JobStatus::linking(), JobStatus::done(), JobStatus::failed("Copy failed.")}) {
        MoveJob job("a", "/a", "/b", status, 100, 100);
        EXPECT_FALSE(tarvik::MoveRun::applyProgress(job, {50, 200}));
        EXPECT_EQ(job.status, status);
        EXPECT_EQ(job.bytesCopied, 100);
        EXPECT_EQ(job.bytesTotal, 100);
    }
}

TEST(ByteProgress, IsAFractionOnlyOfWhatIsKnown) {
    EXPECT_EQ((ByteProgress{5, 0}).fraction(), 0);
    EXPECT_EQ((ByteProgress{5, -1}).fraction(), 0);
    EXPECT_EQ((ByteProgress{5, 20}).fraction(), 0.25);
    EXPECT_EQ((ByteProgress{40, 20}).fraction(), 1);
    EXPECT_EQ((ByteProgress{-1, 20}).fraction(), 0);
}

TEST(MoveJob, MakesItsOwnIdentifier) {
    const MoveJob one("a", "/a", "/b", JobStatus::pending(), 1, 0);
    const MoveJob two("a", "/a", "/b", JobStatus::pending(), 1, 0);
    EXPECT_EQ(one.id.size(), 36U);
    EXPECT_NE(one.id, two.id);
}

TEST(JobStatus, ComparesCaseAndPayload) {
    EXPECT_EQ(JobStatus(), JobStatus::pending());
    EXPECT_EQ(JobStatus::copying(0.5), JobStatus::copying(0.5));
    EXPECT_FALSE(JobStatus::copying(0.5) == JobStatus::copying(0.6));
    EXPECT_FALSE(JobStatus::failed("a") == JobStatus::failed("b"));
    EXPECT_FALSE(JobStatus::done() == JobStatus::linking());
    EXPECT_TRUE(JobStatus::failed("a").isFinal());
    EXPECT_FALSE(JobStatus::linking().isFinal());
}

}  // namespace tarvik::test
