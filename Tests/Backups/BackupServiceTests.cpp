#include "Backups/BackupService.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/SystemCalls.h"
#include "Platform/Processes/ProgramLocation.h"
#include "Platform/Text/Json.h"
#include "Support/EnvironmentVariable.h"
#include "Support/ExtendedAttributes.h"
#include "Support/OrdinaryUser.h"
#include "Support/OtherReaders.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <mutex>
#include <sys/stat.h>
#include <unordered_set>

namespace tarvik {
namespace {

using test::contentOf;
using test::makeFile;
using test::makeFolder;
using test::makeLink;
using test::pictureOf;
using testing::HasSubstr;
using namespace std::chrono_literals;
using Names = std::vector<std::string>;
using Paths = std::vector<fs::path>;

constexpr std::chrono::system_clock::time_point autumn{std::chrono::seconds(test::madeNow)};

class Backups : public testing::Test {
protected:
    BackupRecord create(const Paths& sources) const { return BackupService::create(world.host, sources, world.drive); }
    std::vector<BackupRecord> listed() const { return BackupService::list(world.host, world.drive); }
    std::string failureOf(const Paths& sources) const {
        try {
            create(sources);
        } catch (const Failure& failure) {
            return failure.description();
        }
        return "backed up";
    }
    void setClock(std::chrono::system_clock::time_point instant) {
        world.host.now = [instant] { return instant; };
    }

    const test::EnvironmentVariable zone{"TZ", "UTC0"};
    test::World world;
    const fs::path folder = world.drive / "TarvikBackups/20261115_174543";
};

TEST_F(Backups, StandInADatedFolderAtTheDrivesRoot) {
    makeFile(world.home / "Music/song");
    makeFile(world.home / "Music/more/song");
    makeLink(world.home / "Music/link", "song");
    makeFile(world.home / "Pictures/picture");
    const BackupRecord expected{
        .id = "20261115_174543", .rootPath = folder, .createdAt = autumn, .sourceFileCount = 4, .backupFileCount = 4};
    EXPECT_EQ(create({world.home / "Music", world.home / "Pictures/"}), expected);
    EXPECT_EQ(pictureOf(folder / "Music"), pictureOf(world.home / "Music"));
    EXPECT_EQ(pictureOf(folder / "Pictures"), pictureOf(world.home / "Pictures"));
    EXPECT_EQ(Files::names(folder), (Names{"Music", "Pictures", "backup.json"}));
    EXPECT_EQ(Files::names(world.drive), Names{"TarvikBackups"});
    EXPECT_EQ(listed(), std::vector{expected});
}

TEST_F(Backups, KeepACompactRecord) {
    makeFile(world.home / "Music/song");
    create({world.home / "Music"});
    const auto text = contentOf(folder / "backup.json");
    EXPECT_EQ(text.find_first_of(" \n\t"), std::string::npos);
    const auto json = Json::parsed(text);
    ASSERT_TRUE(json);
    EXPECT_EQ(*json, (nlohmann::json{{"id", "20261115_174543"},
                                     {"rootPath", folder.native()},
                                     {"createdAt", 816457543},
                                     {"sourceFileCount", 1},
                                     {"backupFileCount", 1}}));
}

TEST_F(Backups, AreNamedInTheUsersTime) {
    const test::EnvironmentVariable here("TZ", "EST5");
    const auto record = create({});
    EXPECT_EQ(record.id, "20261115_124543");
    EXPECT_EQ(record.createdAt, autumn);
    EXPECT_EQ(record.rootPath, BackupService::folderAt(world.drive, autumn));
}

TEST_F(Backups, HaveTheDateThatIsReadAgain) {
    // As fine as this system's clock is.
    constexpr auto fraction = std::chrono::duration_cast<std::chrono::system_clock::duration>(123'456'789ns);
    setClock(autumn + fraction);
    const auto record = create({});
    EXPECT_EQ(listed(), std::vector{record});
    EXPECT_LT(std::chrono::abs(record.createdAt - autumn - fraction), 1us);
}

TEST_F(Backups, GiveTwoApplicationsOneNameAndSetTheFirstAside) {
    makeFile(world.home / "One.app/one");
    makeFile(world.home / "Two.APP/two");
    const auto record = create({world.home / "One.app", world.home / "Two.APP"});
    EXPECT_EQ(Files::names(folder), (Names{"InstalledApp.app", "backup.json"}));
    EXPECT_EQ(Files::names(folder / "InstalledApp.app"), Names{"two"});
    EXPECT_EQ(Files::names(world.trash->folder / "InstalledApp.app"), Names{"one"});
    EXPECT_EQ(record.backupFileCount, 2);
}

TEST_F(Backups, SetAsideBesideThemWithTheReasonWhenTheTrashRefuses) {
    world.trash->refuses = true;
    makeFile(world.home / "One.app/one");
    makeFile(world.home / "Two.app/two");
    create({world.home / "One.app", world.home / "Two.app"});
    EXPECT_EQ(Files::names(folder / "InstalledApp.app"), Names{"two"});
    EXPECT_EQ(Files::names(folder / ".TarvikTrash/InstalledApp.app-backup-conflict-2026-11-15T174543Z"), Names{"one"});
}

TEST_F(Backups, NeverMergeIntoWhatCannotBeSetAside) {
    world.trash->refuses = true;
    makeFile(folder / "Music/old", "old");
    makeFile(folder / ".TarvikTrash", "a file where the folder should be");
    makeFile(world.home / "Music/song");
    EXPECT_EQ(failureOf({world.home / "Music"}), "Could not replace " + (folder / "Music").native() + ": File exists");
    EXPECT_EQ(Files::names(folder / "Music"), Names{"old"});
    EXPECT_TRUE(listed().empty());
}

TEST_F(Backups, ShowNoTraceOfTheProgramsName) {
    makeFile(world.home / "Tarvik things/deep/down/Tarvik notes.txt", "notes");
    makeFile(world.home / "app/tarvik.cfg", "cfg");
    const auto record = create({world.home / "Tarvik things", world.home / "app"});
    EXPECT_EQ(contentOf(folder / "App things/deep/down/App notes.txt"), "notes");
    EXPECT_EQ(contentOf(folder / "SourceApp/app.cfg"), "cfg");
    EXPECT_TRUE(Files::exists(world.home / "Tarvik things/deep/down/Tarvik notes.txt")) << "originals are only read";
    EXPECT_EQ(record.backupFileCount, 2);
}

TEST_F(Backups, CountWhatANameConflictHasTaken) {
    makeFile(world.home / "Docs/Tarvik notes", "kept");
    makeFile(world.home / "Docs/App notes", "set aside");
    const auto record = create({world.home / "Docs"});
    EXPECT_EQ(record.sourceFileCount, 2);
    EXPECT_EQ(record.backupFileCount, 1);
    EXPECT_EQ(contentOf(folder / "Docs/App notes"), "kept");
    EXPECT_EQ(contentOf(world.trash->folder / "App notes"), "set aside");
}

TEST_F(Backups, OfOneSecondShareAFolder) {
    makeFile(world.home / "one/1");
    makeFile(world.home / "two/2");
    const auto first = create({world.home / "one"});
    const auto second = create({world.home / "two"});
    EXPECT_EQ(first.id, second.id);
    EXPECT_EQ(Files::names(folder), (Names{"backup.json", "one", "two"}));
    EXPECT_EQ(listed(), std::vector{second});
}

TEST_F(Backups, KeepTheMachineAwakeWhileTheyCopy) {
    makeFile(world.home / "Music/song");
    const fs::path isReported = world.folder / "reported";
    world.withDitto("cp -aT \"$2\" \"$3\"\n" + test::waitFor(isReported));
    int holdsMeanwhile = 0;
    BackupService::create(world.host, {world.home / "Music"}, world.drive, [&](std::int64_t, std::int64_t) {
        holdsMeanwhile = world.sleepBlocker->holds;
        makeFile(isReported);
    });
    EXPECT_EQ(holdsMeanwhile, 1);
    EXPECT_EQ(world.sleepBlocker->holds, 0);
    world.withDitto("exit 1");
    EXPECT_EQ(failureOf({world.home / "Music"}), "Copy failed: ditto failed: exit 1");
    EXPECT_EQ(world.sleepBlocker->holds, 0);
}

TEST_F(Backups, PassOverSourcesThatAreNotThere) {
    makeLink(world.home / "dangling", "nowhere");
    makeFile(world.home / "Music/song");
    const auto record = create({world.home / "nothing", world.home / "dangling", world.home / "Music"});
    EXPECT_EQ(Files::names(folder), (Names{"Music", "backup.json"}));
    EXPECT_EQ(record.sourceFileCount, 1);
    EXPECT_TRUE(create({}).sourceFileCount == 0) << "a backup of nothing is one";
}

TEST_F(Backups, CopySingleFilesAndLinksAsTheyAre) {
    world.withRealDitto();
    makeFile(world.home / "notes.txt", "notes");
    makeLink(world.home / "link", "notes.txt");
    const auto record = create({world.home / "notes.txt", world.home / "link"});
    EXPECT_EQ(contentOf(folder / "notes.txt"), "notes");
    EXPECT_EQ(Files::linkText(folder / "link"), "notes.txt");
    EXPECT_EQ(record.sourceFileCount, 0) << "only what lies in folders is counted";
    EXPECT_EQ(record.backupFileCount, 0);
}

TEST_F(Backups, RefuseASourceWithoutAName) {
    EXPECT_EQ(failureOf({"/"}), "Could not back up /: Invalid argument");
    EXPECT_FALSE(Files::exists(folder));
}

TEST_F(Backups, LeaveNoRecordAndNoHalfCopyWhenACopyFails) {
    makeFile(world.home / "one/1");
    makeFile(world.home / "two/2");
    world.withDitto(
        R"(case "$2" in */two) mkdir "$3"; echo half > "$3/half"; echo 'no room' >&2; exit 1;; esac; cp -aT "$2" "$3")");
    EXPECT_EQ(failureOf({world.home / "one", world.home / "two", world.home / "one"}),
              "Copy failed: ditto failed: no room");
    EXPECT_EQ(Files::names(folder), Names{"one"}) << "what has been copied stays";
    EXPECT_EQ(contentOf(world.trash->folder / "two/half"), "half\n");
    EXPECT_TRUE(listed().empty());
    EXPECT_EQ(BackupService::unfinished(world.host, world.drive), Names{"20261115_174543"});
}

TEST_F(Backups, FailWhenTheToolHasLostSomethingAndSaysNothing) {
    makeFile(world.home / "one/1");
    makeFile(world.home / "two/deep/2");
    world.withDitto(R"(cp -aT "$2" "$3"; rm -f "$3/deep/2")");
    EXPECT_EQ(failureOf({world.home / "one", world.home / "two"}),
              "Verification failed: deep/2 is missing at the destination.");
    EXPECT_EQ(Files::names(folder), Names{"one"}) << "what has been copied stays";
    EXPECT_TRUE(Files::exists(world.trash->folder / "two/deep"));
    EXPECT_TRUE(listed().empty());
}

TEST_F(Backups, HoldWhatIsInUseAsFarAsItStandsStill) {
    makeFile(world.home / "Mail/inbox", "one");
    makeFile(world.home / "Mail/old", "old");
    world.withDitto(R"(cp -aT "$2" "$3"; echo two >> "$2/inbox"; echo new > "$2/new"; rm "$2/old")");
    EXPECT_EQ(failureOf({world.home / "Mail"}), "backed up");
    EXPECT_EQ(contentOf(folder / "Mail/inbox"), "one");
}

TEST_F(Backups, BeginNoFurtherSourceWhenAskedToStop) {
    for (const char* file : {"one/1", "two/2", "three/3"}) makeFile(world.home / file);
    const auto stoppedWhen = [&](const BackupService::StopRequest& isAskedToStop) -> std::string {
        try {
            BackupService::create(
                world.host, {world.home / "one", world.home / "two", world.home / "three"}, world.drive,
                [](std::int64_t, std::int64_t) {}, isAskedToStop);
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.code(), ECANCELED);
            return failure.description();
        }
        return "backed up";
    };
    EXPECT_EQ(stoppedWhen([] { return true; }), "The backup was stopped before anything was copied.");
    EXPECT_FALSE(Files::exists(folder)) << "nothing was even measured";
    EXPECT_EQ(stoppedWhen([&] { return Files::exists(folder); }), "The backup was stopped before anything was copied.");
    EXPECT_EQ(stoppedWhen([&] { return Files::exists(folder / "two"); }),
              "The backup was stopped after 2 of 3 items. It is not complete.");
    EXPECT_EQ(Files::names(folder), (Names{"one", "two"})) << "what has been copied stays";
    EXPECT_TRUE(listed().empty());
    EXPECT_EQ(stoppedWhen([&] { return Files::exists(folder / "three"); }), "backed up") << "all was begun";
}

TEST_F(Backups, LeaveNoRecordWhenARenameFails) {
    makeFile(world.home / "sealed/in/Tarvik", "content");
    world.withDitto(R"(cp -rT "$2" "$3"; chmod 555 "$3/in")");
    for (const auto& path : {world.host.tools.ditto, world.home, world.drive}) fs::permissions(path, fs::perms::all);
    const test::OrdinaryUser user(world.folder.path());
    const auto in = (folder / "sealed/in").native();
    EXPECT_EQ(failureOf({world.home / "sealed"}),
              "Could not move " + in + "/Tarvik to " + in + "/App: Permission denied");
    EXPECT_TRUE(Files::exists(folder / "sealed/in/Tarvik"));
    EXPECT_TRUE(listed().empty());
}

TEST_F(Backups, FailWhenTheirFolderCannotBeMade) {
    makeFile(world.drive / "TarvikBackups", "a file where a folder should be");
    EXPECT_THAT(failureOf({}), HasSubstr("Could not create the folder " + (world.drive / "TarvikBackups").native()));
    EXPECT_TRUE(listed().empty());
}

TEST_F(Backups, MakeNoFolderInPlaceOfADriveThatIsGone) {
    fs::remove(world.drive);
    makeFile(world.home / "Music/song");
    EXPECT_EQ(failureOf({world.home / "Music"}), "Target drive disconnected");
    EXPECT_FALSE(Files::exists(world.drive));
}

TEST_F(Backups, NeedNobodyWhoListens) {
    makeFile(world.home / "Music/song");
    const auto record = BackupService::create(world.host, {world.home / "Music"}, world.drive, {}, {});
    EXPECT_EQ(record.backupFileCount, 1);
}

TEST_F(Backups, FailWhenTheRecordCannotBeWritten) {
    makeFolder(world.home / "backup.json");
    EXPECT_THAT(failureOf({world.home / "backup.json"}), HasSubstr("backup.json"));
    EXPECT_TRUE(listed().empty());
}

TEST_F(Backups, AreListedNewestFirst) {
    const std::vector<int> days = {2, 1, 4, 3};
    for (const int day : days) {
        setClock(autumn + std::chrono::days(day));
        create({});
    }
    Names ids;
    for (const auto& record : listed()) ids.push_back(record.id);
    EXPECT_EQ(ids, (Names{"20261119_174543", "20261118_174543", "20261117_174543", "20261116_174543"}));
}

TEST_F(Backups, AreNoneOnADriveWithoutTheirFolder) {
    EXPECT_TRUE(listed().empty());
    EXPECT_TRUE(BackupService::unfinished(world.host, world.drive).empty());
    EXPECT_TRUE(BackupService::list(world.host, world.drive / "nothing").empty());
    EXPECT_TRUE(Files::names(world.drive).empty()) << "a question makes nothing";
}

TEST_F(Backups, WithoutAReadableRecordArePassedOver) {
    const auto good = create({});
    const auto whole = contentOf(folder / "backup.json");
    const auto backups = folder.parent_path();
    auto record = Json::parsed(whole).value();
    for (const char* key : {"id", "rootPath", "createdAt", "sourceFileCount", "backupFileCount"}) {
        auto without = record;
        without.erase(key);
        makeFile(backups / (std::string("no ") + key) / "backup.json", without.dump());
        without[key] = nlohmann::json::array();
        makeFile(backups / (std::string("odd ") + key) / "backup.json", without.dump());
    }
    makeFile(backups / "cut/backup.json", whole.substr(0, whole.size() / 2));
    makeFile(backups / "empty/backup.json", "");
    makeFile(backups / "huge/backup.json", whole + std::string(100'000, ' '));
    makeFile(backups / "folder/backup.json/inner");
    makeFolder(backups / "pipe");
    test::makePipe(backups / "pipe/backup.json");
    makeFile(backups / "file");
    EXPECT_EQ(listed(), std::vector{good});
    EXPECT_THAT(BackupService::unfinished(world.host, world.drive),
                testing::IsSupersetOf({"cut", "empty", "folder", "no id", "pipe"}));
}

TEST_F(Backups, TellTheirProgressOverAllSources) {
    test::makeFileOfSize(world.home / "one/1", 400'000);
    test::makeFileOfSize(world.home / "two/2", 600'000);
    std::mutex mutex;
    std::vector<std::pair<std::int64_t, std::int64_t>> reports;
    const fs::path isReported = world.folder / "reported";
    world.withDitto("cp -aT \"$2\" \"$3\"\ncase \"$2\" in */two) " + test::waitFor(isReported) + ";; esac");
    BackupService::create(world.host, {world.home / "one", world.home / "two"}, world.drive,
                          [&](std::int64_t copied, std::int64_t total) {
                              const std::lock_guard lock(mutex);
                              reports.emplace_back(copied, total);
                              if (reports.size() > 1) makeFile(isReported);
                          });
    ASSERT_GE(reports.size(), 3U);
    const auto total = reports.back().second;
    EXPECT_GE(total, 1'000'000);
    EXPECT_EQ(reports.back().first, total);
    EXPECT_TRUE(std::is_sorted(reports.begin(), reports.end()));
    for (const auto& report : reports) EXPECT_EQ(report.second, total);
    EXPECT_GE(reports.front().first, 400'000);
    EXPECT_LT(reports.front().first, 600'000);
}

/// With the copy tool of this build, and with readers that are not ours.
class WholeBackups : public Backups {
protected:
    WholeBackups() { world.withRealDitto(); }

    /// The status of a command of the system's shell.
    static int shell(const std::string& command) { return std::system(command.c_str()); }
};

TEST_F(WholeBackups, HoldEverythingThatBelongsToAFile) {
    TARVIK_NEEDS_NAMES_OF_ANY_BYTES();
    if (const auto missing = test::OtherReaders::missing()) TARVIK_SKIP_BECAUSE(*missing);
    const auto source = world.home / "Odd";
    makeFile(source / "run.sh", "#!/bin/sh");
    fs::permissions(source / "run.sh", fs::perms::owner_all | fs::perms::set_uid);
    makeFile(source / "secret", "s");
    fs::permissions(source / "secret", fs::perms::owner_read);
    fs::create_hard_link(source / "run.sh", source / "same");
    makeLink(source / "dangling", "/no/such/place");
    makeFile(source / "bad\xFFname\n\x1B[2J", "x");
    makeFile(source / "写真 \xF0\x9F\x8E\xB9/.hidden", "h");
    makeFolder(source / "empty");
    makeFile(source / std::string(255, 'n'), "long");
    test::setAttribute(source / "secret", "user.colour", "red");
    const std::array<timespec, 2> times = {{{1000000000, 123456789}, {1000000000, 123456789}}};
    ASSERT_EQ(::utimensat(AT_FDCWD, (source / "secret").c_str(), times.data(), 0), 0);
    create({source});

    const auto copy = folder / "Odd";
    EXPECT_EQ(pictureOf(copy), pictureOf(source));
    EXPECT_EQ(test::OtherReaders::tree(copy), test::OtherReaders::tree(source));
    EXPECT_EQ(test::statusOf(copy / "run.sh").st_ino, test::statusOf(copy / "same").st_ino);
    EXPECT_EQ(SystemCalls::contentChangeTime(test::statusOf(copy / "secret")).tv_nsec, 123456789);
    EXPECT_EQ(test::attributeOf(copy / "secret", "user.colour"), "red");
}

TEST_F(WholeBackups, KeepARecordThatOthersRead) {
    makeFile(world.home / "caf\xC3\xA9/\"quoted\"");
    create({world.home / "caf\xC3\xA9"});
    EXPECT_EQ(shell("python3 -c 'import json, sys\n"
                    "r = json.load(open(sys.argv[1], encoding=\"utf-8\"))\n"
                    "assert sorted(r) == [\"backupFileCount\", \"createdAt\", \"id\", \"rootPath\", "
                    "\"sourceFileCount\"], r\n"
                    "assert r[\"id\"] == \"20261115_174543\" and r[\"createdAt\"] == 816457543, r\n"
                    "assert r[\"rootPath\"] == sys.argv[2] and r[\"sourceFileCount\"] == 1, r' '" +
                    (folder / "backup.json").native() + "' '" + folder.native() + "'"),
              0);
}

TEST_F(WholeBackups, HoldHugeFilesWithoutTheirHoles) {
    makeFile(world.home / "Disks/disk.img", "begin");
    fs::resize_file(world.home / "Disks/disk.img", 5'000'000'000);
    create({world.home / "Disks"});
    const auto copy = test::statusOf(folder / "Disks/disk.img");
    EXPECT_EQ(copy.st_size, 5'000'000'000);
    EXPECT_LT(copy.st_blocks * 512, 1'000'000);
}

TEST_F(WholeBackups, FailAtWhatMayNotBeRead) {
    makeFile(world.home / "Music/secret");
    fs::permissions(world.home / "Music/secret", fs::perms::none);
    for (const auto& path : {world.home, world.home / "Music", world.drive}) fs::permissions(path, fs::perms::all);
    const test::OrdinaryUser user(world.folder.path());
    EXPECT_THAT(failureOf({world.home / "Music"}),
                testing::ContainsRegex("^Copy failed: ditto failed: ditto: .*secret: Permission denied"));
    EXPECT_TRUE(listed().empty());
}

TEST_F(WholeBackups, RefuseASourceThatHoldsThem) {
    makeFile(world.drive / "Music/song");
    EXPECT_THAT(failureOf({world.folder / "Volumes"}), HasSubstr("Copy failed: ditto failed: "));
    EXPECT_TRUE(listed().empty());
    EXPECT_EQ(contentOf(world.drive / "Music/song"), "content");
}

TEST_F(WholeBackups, KeepThePathOfADriveThatIsNoText) {
    TARVIK_NEEDS_NAMES_OF_ANY_BYTES();
    const test::World odd(world.folder / "Volumes/caf\xE9");
    const auto record = BackupService::create(world.host, {}, odd.drive);
    EXPECT_EQ(BackupService::list(world.host, odd.drive), std::vector{record});
    EXPECT_EQ(record.rootPath, odd.drive / "TarvikBackups/20261115_174543");
}

TEST(BackupRecord, HashesAllItsFields) {
    const BackupRecord record{"20261115_174543", "/Volumes/T", autumn, 2, 1};
    std::vector<BackupRecord> records(6, record);
    records[0].id = "other";
    records[1].rootPath = "/other";
    records[2].createdAt = {};
    records[3].sourceFileCount = 5;
    records[4].backupFileCount = 5;
    EXPECT_EQ(std::unordered_set<BackupRecord>(records.begin(), records.end()).size(), 6U);
    for (std::size_t field = 0; field < 5; ++field)
        EXPECT_NE(std::hash<BackupRecord>()(records[field]), std::hash<BackupRecord>()(record)) << field;
}

}  // namespace
}  // namespace tarvik
