#include "Backups/BackupPlan.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Support/EnvironmentVariable.h"
#include "Support/FailureOf.h"
#include "Support/OrdinaryUser.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <functional>
#include <memory>
#include <optional>

namespace tarvik {
namespace {

using test::makeFile;
using test::makeFolder;
using test::makeLink;
using test::pictureOf;
using testing::HasSubstr;
using Paths = std::vector<fs::path>;

class BackupPlanned : public testing::Test {
protected:
    BackupPlan::Plan planOf(const Paths& paths) const { return BackupPlan::plan(world.host, paths, world.driveInfo()); }
    std::string refusal(const Paths& paths) const { return refusal(paths, world.driveInfo()); }
    std::string refusal(const Paths& paths, const DriveInfo& drive) const {
        const std::string before = pictureOf(world.folder.path());
        std::string sentence = "planned";
        try {
            BackupPlan::plan(world.host, paths, drive);
        } catch (const Failure& failure) {
            sentence = failure.description();
        }
        EXPECT_EQ(pictureOf(world.folder.path()), before);
        return sentence;
    }
    BackupRecord run(const BackupPlan::Plan& plan) const {
        return BackupPlan::run(world.host, plan, [](std::int64_t, std::int64_t) {});
    }
    std::string failureOf(const BackupPlan::Plan& plan) const {
        try {
            run(plan);
        } catch (const Failure& failure) {
            return failure.description();
        }
        return "done";
    }

    const test::EnvironmentVariable zone{"TZ", "UTC0"};
    test::World world;
    const fs::path home = world.home;
    const fs::path backups = world.drive / "TarvikBackups";
};

TEST_F(BackupPlanned, HoldsEachSourceOnce) {
    test::makeFileOfSize(home / "Music/song", 100'000);
    makeFile(home / "notes.txt");
    const auto plan = planOf({home / "Music", home / "notes.txt", home / "./Music/"});
    EXPECT_EQ(plan.sources, (Paths{home / "Music", home / "notes.txt"}));
    EXPECT_GE(plan.bytesTotal, 100'000);
    EXPECT_LT(plan.bytesTotal, 200'000);
}

TEST_F(BackupPlanned, RefusesWhatIsNoPlainItem) {
    makeFile(home / "Music/song");
    makeLink(home / "link", home / "Music");
    makeLink(home / "dangling", "nowhere");
    EXPECT_EQ(refusal({home / "Music", home / "nothing"}), "Nothing stands at " + (home / "nothing").native() + ".");
    EXPECT_EQ(refusal({home / "link"}),
              (home / "link").native() + " is a symlink to " + (home / "Music").native() + ". Name what it leads to.");
    EXPECT_THAT(refusal({home / "dangling"}), HasSubstr("is a symlink to nowhere."));
}

TEST_F(BackupPlanned, RefusesWhatHoldsTheBackups) {
    makeFolder(backups);
    makeLink(home / "drive", world.drive);
    for (const auto& source : {fs::path("/"), world.folder.path(), world.drive, backups, home / "drive/TarvikBackups"})
        EXPECT_EQ(refusal({source}), source.native() + " holds the backups themselves and can't be backed up there.");
    fs::remove(backups);
    EXPECT_THAT(refusal({world.drive}), HasSubstr("holds the backups themselves"));
    makeFile(world.drive / "Music/song");
    EXPECT_EQ(refusal({world.drive / "Music"}), "planned") << "what is on the drive may be copied there";
}

TEST_F(BackupPlanned, RefusesWhatTheDriveCannotHold) {
    makeLink(home / "Music/latest", "song");
    auto stick = world.driveInfo();
    stick.filesystem = "exFAT";
    stick.keepsLinks = false;
    EXPECT_EQ(refusal({home / "Music"}, stick), "Music does not fit on Backup: " + (home / "Music/latest").native() +
                                                    " is a symlink, and exFAT holds none. Choose another drive.");
    EXPECT_EQ(refusal({home / "Music"}), "planned");
}

TEST_F(BackupPlanned, RefusesTwoNamesThatAreOneOnTheDrive) {
    makeFile(home / "Code/makefile");
    makeFile(home / "Code/Makefile");
    auto stick = world.driveInfo();
    stick.foldsNames = true;
    EXPECT_EQ(refusal({home / "Code"}, stick), "Code does not fit on Backup: " + (home / "Code/Makefile").native() +
                                                   " and makefile would be one item there. Choose another drive.");
}

TEST_F(BackupPlanned, RefusesWhatCannotBeRead) {
    makeFile(home / "Music/sub/secret");
    fs::permissions(home / "Music/sub/secret", fs::perms::none);
    const test::OrdinaryUser user(world.folder.path());
    EXPECT_EQ(test::failureOf([&] { planOf({home / "Music"}); }),
              "Music can't be backed up as a whole: " + (home / "Music/sub/secret").native() + " can't be read (" +
                  test::wordsFor(EACCES) + ").");
}

TEST_F(BackupPlanned, TellsWhatIsLeftOut) {
    makeFile(home / "Music/song");
    test::makePipe(home / "Music/sub pipe");
    makeFile(home / "Mail/inbox");
    test::makeSocket(home / "Mail/a socket");
    makeFile(home / "Mail/b/.nfs1");
    makeFile(home / "Mail/c/.nfs2");
    world.withRealDitto();
    const auto plan = planOf({home / "Music", home / "Mail"});
    EXPECT_THAT(BackupPlan::confirm(plan).details,
                testing::ElementsAre("Music is backed up without " + (home / "Music/sub pipe").native() +
                                         ", as no copy can hold a pipe.",
                                     "Mail is backed up without " + (home / "Mail/a socket").native() +
                                         " and 2 others like it, as no copy can hold a socket."));
    EXPECT_EQ(failureOf(plan), "done");
    EXPECT_EQ(refusal({home / "Music/sub pipe"}), "sub pipe can't be backed up: " + (home / "Music/sub pipe").native() +
                                                      " is a pipe, which no copy can hold.");
}

TEST_F(BackupPlanned, RefusesTwoThingsOfOneName) {
    for (const auto* item : {"One.app", "Two.app", "a/Music", "b/music", "Tarvik files", "App files"})
        makeFolder(home / item);
    EXPECT_EQ(refusal({home / "One.app", home / "Two.app"}),
              (home / "One.app").native() + " and " + (home / "Two.app").native() +
                  " would both bear the name InstalledApp.app. Back them up one after the other.");
    EXPECT_THAT(refusal({home / "a/Music", home / "b/music"}), HasSubstr("would both bear the name music."))
        << "many drives take no notice of case";
    for (const auto* item : {"a/Caf\u00E9", "b/CAFE\u0301"}) makeFolder(home / item);
    EXPECT_THAT(refusal({home / "a/Caf\u00E9", home / "b/CAFE\u0301"}), HasSubstr("would both bear the name"))
        << "nor of the form of its letters";
    EXPECT_THAT(refusal({home / "Tarvik files", home / "App files"}), HasSubstr("would both bear the name App files."));
    EXPECT_EQ(refusal({home / "One.app", home / "a/Music", home / "App files"}), "planned");
}

TEST_F(BackupPlanned, RefusesTheNameOfTheRecord) {
    makeFile(home / "backup.json");
    EXPECT_EQ(refusal({home / "backup.json"}),
              "A backup keeps the name backup.json for itself. Back up the folder that holds " +
                  (home / "backup.json").native() + ".");
}

TEST_F(BackupPlanned, RefusesWhatDoesNotFit) {
    test::makeFileOfSize(home / "Music/song", 100'000);
    auto drive = world.driveInfo();
    drive.freeBytes = planOf({home / "Music"}).bytesTotal;
    EXPECT_EQ(refusal({home / "Music"}, drive), "planned");
    --drive.freeBytes;
    EXPECT_THAT(refusal({home / "Music"}, drive), testing::MatchesRegex("Need [0-9]+ KB but Backup has [0-9]+ KB\\."));
}

TEST_F(BackupPlanned, RefusesAPlaceThatIsNotOnTheDrive) {
    makeFolder(home / "elsewhere");
    makeLink(backups, home / "elsewhere");
    makeFile(home / "Music/song");
    EXPECT_EQ(refusal({home / "Music"}), "What is backed up on Backup would land in " + (home / "elsewhere").native() +
                                             ", which is not on that drive.");
}

TEST_F(BackupPlanned, AsksWithAllThatMatters) {
    makeFolder(home / "Music");
    makeFolder(home / "Pictures");
    EXPECT_EQ(BackupPlan::confirm(planOf({home / "Music"})),
              (Dialog{"Back up 1 item to Backup?",
                      "Total Zero KB. Copies go to " + backups.native() + ". The originals stay as they are.",
                      {"Back Up", "Cancel"}}));
    EXPECT_EQ(BackupPlan::confirm(planOf({home / "Music", home / "Pictures"})).title, "Back up 2 items to Backup?");
}

TEST_F(BackupPlanned, IsMadeAndTold) {
    makeFile(home / "Music/song");
    const auto plan = planOf({home / "Music"});
    const auto record = run(plan);
    EXPECT_EQ(pictureOf(record.rootPath / "Music"), pictureOf(home / "Music"));
    EXPECT_EQ(BackupPlan::done(plan, record), "Backed up 1 item to " + (backups / "20261115_174543").native());
    EXPECT_EQ(BackupPlan::remark(record), std::nullopt);
}

TEST_F(BackupPlanned, TellsOfFilesThatTheCopiesLack) {
    makeFile(home / "Docs/Tarvik notes");
    makeFile(home / "Docs/App notes");
    EXPECT_EQ(BackupPlan::remark(run(planOf({home / "Docs"}))), "The folders held 2 files, their copies hold 1.");
}

TEST_F(BackupPlanned, FailsWhenTheDriveHasGoneMeanwhile) {
    makeFile(home / "Music/song");
    const auto plan = planOf({home / "Music"});
    world.volumes->list.clear();
    EXPECT_EQ(failureOf(plan), "Target drive disconnected") << "its mount path is a plain folder now";
    EXPECT_TRUE(Files::names(world.drive).empty());
}

TEST_F(BackupPlanned, WritesNothingToADriveThatHasTakenThePlaceOfTheChosenOne) {
    makeFile(home / "Music/song");
    const auto plan = planOf({home / "Music"});
    fs::rename(world.drive, world.folder / "unplugged");
    makeFolder(world.drive);
    EXPECT_EQ(failureOf(plan), "Target drive disconnected. Another drive is at " + world.drive.native() + " now.");
    EXPECT_TRUE(Files::names(world.drive).empty());
}

TEST_F(BackupPlanned, KnowsTheDriveByItsIdentifierWhereThereIsOne) {
    makeFile(home / "Music/song");
    world.volumes->list.front().identifier = "A";
    const auto plan = planOf({home / "Music"});
    world.volumes->list.front().identifier = "B";
    EXPECT_THAT(failureOf(plan), testing::StartsWith("Target drive disconnected. Another drive is at "));
    world.volumes->list.front().identifier = "A";
    EXPECT_EQ(failureOf(plan), "done");
}

TEST_F(BackupPlanned, WritesNothingToADriveThatNobodyHasSeen) {
    makeFile(home / "Music/song");
    const auto volumes = world.volumes->list;
    world.volumes->list.clear();
    const auto plan = planOf({home / "Music"});
    world.volumes->list = volumes;
    EXPECT_EQ(failureOf(plan), "Target drive disconnected") << "nobody knows which one was meant";
    EXPECT_TRUE(Files::names(world.drive).empty());
}

TEST_F(BackupPlanned, FailsWhenASourceHasGoneMeanwhile) {
    makeFile(home / "Music/song");
    makeFile(home / "Pictures/picture");
    const auto plan = planOf({home / "Music", home / "Pictures"});
    fs::remove_all(home / "Music");
    EXPECT_EQ(failureOf(plan), (home / "Music").native() + " was gone when its turn came: the backup in " +
                                   (backups / "20261115_174543").native() + " does not hold it.");
}

TEST_F(BackupPlanned, WaitsForAFolderOfItsOwn) {
    makeFile(home / "Music/song");
    makeFile(backups / "20261115_174543/Music/older");
    const auto plan = planOf({home / "Music"});
    EXPECT_EQ(failureOf(plan), "Other backups are being made on this drive. Try again later.")
        << "the clock stands still";

    const auto asked = std::make_shared<std::atomic<int>>(0);
    world.host.now = [asked] {
        return std::chrono::system_clock::time_point(std::chrono::seconds(test::madeNow + (++*asked > 3 ? 1 : 0)));
    };
    EXPECT_EQ(run(plan).id, "20261115_174544");
    EXPECT_TRUE(Files::exists(backups / "20261115_174543/Music/older"));
}

TEST_F(BackupPlanned, SharesItsFolderWithNoneThatBeginsMeanwhile) {
    makeFile(home / "Music/song");
    makeFile(home / "Pictures/one");
    makeFile(home / "Pictures/two");
    const auto music = planOf({home / "Music"});
    const auto pictures = planOf({home / "Pictures"});
    const auto clock = [](const std::function<int()>& seconds) {
        return [seconds] {
            return std::chrono::system_clock::time_point(std::chrono::seconds(test::madeNow + seconds()));
        };
    };
    for (int moment = 1; moment <= 3; ++moment) {
        const auto asked = std::make_shared<int>(0);
        const auto othersAsked = std::make_shared<int>(0);
        Host otherProcess = world.host;
        otherProcess.now = clock([=] { return ++*othersAsked > 2 ? 1 : 0; });
        std::optional<BackupRecord> others;
        Host host = world.host;
        host.now = clock([&, asked] {
            if (++*asked == moment) others = BackupPlan::run(otherProcess, pictures, [](std::int64_t, std::int64_t) {});
            return *asked > moment ? 2 : 0;
        });
        const auto own = BackupPlan::run(host, music, [](std::int64_t, std::int64_t) {});
        if (!others) continue;  // It asked for the time less often.
        EXPECT_NE(own.rootPath, others->rootPath) << moment;
        EXPECT_EQ(Files::names(own.rootPath), (std::vector<std::string>{"Music", "backup.json"}));
        EXPECT_EQ(Files::names(others->rootPath), (std::vector<std::string>{"Pictures", "backup.json"}));
        EXPECT_EQ(own.backupFileCount, 1);
        EXPECT_EQ(others->backupFileCount, 2);
        EXPECT_FALSE(Files::exists(world.trash->folder)) << "nothing was in the way";
        fs::remove_all(backups);
    }
}

TEST_F(BackupPlanned, LeavesNoFolderWhenNothingHasArrived) {
    makeFile(home / "Music/song");
    makeFile(home / "Pictures/picture");
    const auto plan = planOf({home / "Music", home / "Pictures"});
    world.withDitto("echo 'no room' >&2; exit 1");
    EXPECT_EQ(failureOf(plan), "Copy failed: ditto failed: no room");
    EXPECT_TRUE(Files::names(backups).empty());
    world.withDitto(R"(case "$2" in */Music) cp -aT "$2" "$3";; *) exit 1;; esac)");
    EXPECT_EQ(failureOf(plan), "Copy failed: ditto failed: exit 1");
    EXPECT_EQ(Files::names(backups / "20261115_174543"), std::vector<std::string>{"Music"});
}

TEST_F(BackupPlanned, LeavesNoFolderWhenItIsStoppedBeforeItsFirstCopy) {
    makeFile(home / "Music/song");
    const auto plan = planOf({home / "Music"});
    EXPECT_THROW(BackupPlan::run(
                     world.host, plan, [](std::int64_t, std::int64_t) {}, [&] { return Files::exists(backups); }),
                 Failure);
    EXPECT_TRUE(Files::names(backups).empty());
}

TEST_F(BackupPlanned, StandsInAFolderThatIsAsOpenAsOthers) {
    const auto record = run(planOf({}));
    makeFolder(world.drive / "other");
    EXPECT_EQ(test::statusOf(record.rootPath).st_mode, test::statusOf(world.drive / "other").st_mode);
}

/// What only real second volumes show.
class BackupOnVolume : public BackupPlanned {
protected:
    const test::TemporaryFolder mounts;

    static DriveInfo driveOn(const test::RealVolume& volume) {
        return {.id = volume.path().native(),
                .name = "Stick",
                .mountPath = volume.path(),
                .freeBytes = std::int64_t{1} << 40};
    }
    std::string failureOn(const test::RealVolume& volume) {
        world.volumes->list.front().mountPath = volume.path();
        return failureOf({{home / "Music"}, driveOn(volume), 0});
    }
};

TEST_F(BackupOnVolume, ThatFillsUpLeavesNoRecord) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    world.withRealDitto();
    test::makeFileOfSize(home / "Music/song", 5'000'000);
    const auto volume = test::RealVolume::memory(mounts.path(), 2'000'000);
    EXPECT_THAT(failureOn(volume),
                testing::MatchesRegex("Copy failed: ditto failed: ditto: .*: No space left on device"));
    EXPECT_TRUE(BackupService::list(world.host, volume.path()).empty());
    EXPECT_EQ(BackupService::unfinished(world.host, volume.path()).size(), 1U);
    EXPECT_EQ(test::statusOf(home / "Music/song").st_size, 5'000'000);
}

TEST_F(BackupOnVolume, ThatFillsUpTellsSoInOneSentence) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    world.withRealDitto();
    for (int i = 0; i < 600; ++i) test::makeFileOfSize(home / "Music" / std::to_string(i), 9000);
    const auto volume = test::RealVolume::memory(mounts.path(), 2'000'000);
    EXPECT_THAT(failureOn(volume),
                testing::MatchesRegex("Copy failed: ditto failed: ditto: [^\n]*: No space left on device "
                                      "\\(and [0-9]+ more\\)"));
}

TEST_F(BackupOnVolume, ThatIsReadOnlyTakesNothing) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    world.withRealDitto();
    makeFile(home / "Music/song");
    auto volume = test::RealVolume::memory(mounts.path(), 2'000'000);
    volume.remountReadOnly();
    EXPECT_THAT(failureOn(volume), testing::MatchesRegex("Could not create the folder .*: Read-only file system"));
}

TEST_F(BackupOnVolume, ThatIsUnpluggedInTheMiddleLeavesNoRecord) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    makeFile(home / "Music/song");
    for (const std::string moment : {"before", "after"}) {
        const auto volume = test::RealVolume::memory(mounts.path(), 2'000'000);
        const auto unplug = test::RealVolume::unplugging(volume.path()) + "\n";
        const std::string copy = "mkdir -p \"${3%/*}\"; cp -aT \"$2\" \"$3\"\n";
        world.withDitto(moment == "before" ? unplug + copy : copy + unplug);
        EXPECT_EQ(failureOn(volume), "Target drive disconnected") << moment;
        EXPECT_TRUE(BackupService::list(world.host, volume.path()).empty());
    }
}

TEST_F(BackupOnVolume, ThatIsUnpluggedBeforeTheFirstCopyLeavesTheDiskBelowAlone) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    makeFile(home / "Music/song");
    makeFolder(backups);
    ASSERT_EQ(std::system(test::RealVolume::plugging(world.drive, 2'000'000).c_str()), 0);
    const auto plan = planOf({home / "Music"});
    // The time is asked for when the folder gets its name.
    const auto unplug = test::RealVolume::unplugging(world.drive) + " 2>/dev/null";
    world.host.now = [unplug, now = world.host.now] {
        static_cast<void>(std::system(unplug.c_str()));
        return now();
    };
    EXPECT_EQ(failureOf(plan), "Target drive disconnected");
    EXPECT_TRUE(Files::names(backups).empty());
}

TEST_F(BackupOnVolume, RefusesAVolumeMountedInTheBackupsPlace) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const auto drive = test::RealVolume::memory(mounts.path(), 2'000'000);
    makeFolder(drive / "TarvikBackups");
    const auto inside = test::RealVolume::memory(drive.path(), 1'000'000);
    fs::remove(drive / "TarvikBackups");
    makeLink(drive / "TarvikBackups", inside.path());
    makeFile(home / "Music/song");
    EXPECT_THAT(refusal({home / "Music"}, driveOn(drive)), HasSubstr("which is not on that drive."));
}

}  // namespace
}  // namespace tarvik
