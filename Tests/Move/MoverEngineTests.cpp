#include "Copying/HiddenPlace.h"
#include "Copying/Leftovers.h"
#include "Copying/MoverError.h"
#include "Move/MoverEngine.h"
#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"
#include "Platform/Storage/DriveGuard.h"
#include "Support/FailureOf.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace tarvik::test {

namespace {

/// A world with one folder to move.
class MoverEngineTest : public testing::Test {
protected:
    MoverEngineTest() {
        makeFile(source / "song.txt", "la la");
        makeFile(source / ".hidden/deep/file", "secret");
        makeLink(source / "link", "song.txt");
        makeLink(source / "dangling", "nowhere");
        makeFolder(source / "empty");
        picture = pictureOf(source);
    }

    void move() {
        tarvik::MoverEngine::moveAndLink(
            world.host, source, world.foldersOnDrive(), false,
            [this](const JobStatus& status) { statuses.push_back(status); },
            [this](std::int64_t copied, std::int64_t total) { progress.emplace_back(copied, total); });
    }

    /// The description of the failure that a move ends with.
    std::string failureOfMove() {
        try {
            move();
        } catch (const Failure& failure) {
            return failure.description();
        }
        return "moved";
    }

    std::string failureOfRestore(const fs::path& link) {
        try {
            tarvik::MoverEngine::restore(world.host, link);
        } catch (const Failure& failure) {
            return failure.description();
        }
        return "restored";
    }

    World world;
    fs::path source = world.home / "Music";
    fs::path destination = world.foldersOnDrive() / "Music";
    std::string picture;
    std::vector<JobStatus> statuses;
    std::vector<std::pair<std::int64_t, std::int64_t>> progress;
};

}  // namespace

TEST_F(MoverEngineTest, GivesARunningApplicationEightSecondsToQuit) {
    EXPECT_EQ(tarvik::MoverEngine::quitTimeout, std::chrono::seconds(8));
}

TEST_F(MoverEngineTest, WritesNothingToTheDiskBelowADriveThatHasGone) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const auto other = RealVolume::memory(world.folder.path(), 1'000'000);
    const auto moveTo = [&](const DriveGuard& drive) {
        tarvik::MoverEngine::moveAndLink(
            world.host, source, world.foldersOnDrive() / "new", false, [](const JobStatus&) {},
            [](std::int64_t, std::int64_t) {}, drive);
    };
    const std::string before = pictureOf(world.folder.path());
    try {
        moveTo(DriveGuard(other.path()));
        FAIL() << "it was moved";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.description(), "Target drive disconnected");
    }
    EXPECT_EQ(pictureOf(world.folder.path()), before);
    moveTo(DriveGuard(world.drive));
    EXPECT_TRUE(Files::isSymbolicLink(source));
}

TEST_F(MoverEngineTest, NeedsNobodyWhoListens) {
    tarvik::MoverEngine::moveAndLink(world.host, source, world.foldersOnDrive(), false, {}, {});
    EXPECT_EQ(pictureOf(world.foldersOnDrive() / source.filename()), picture);
    tarvik::MoverEngine::restore(world.host, source, {});
    EXPECT_EQ(pictureOf(source), picture);
}

TEST_F(MoverEngineTest, MovesAFolderAndLeavesAnAbsoluteLink) {
    move();
    EXPECT_EQ(Files::linkText(source), destination);
    EXPECT_EQ(pictureOf(destination), picture);
    EXPECT_EQ(contentOf(source / "song.txt"), "la la");
    EXPECT_EQ(statuses, (std::vector{JobStatus::verifying(), JobStatus::linking()}));
    ASSERT_FALSE(progress.empty());
    EXPECT_EQ(progress.back().first, progress.back().second);
}

TEST_F(MoverEngineTest, MovesASingleFile) {
    const fs::path file = world.home / "movie";
    makeFile(file, "pictures");
    tarvik::MoverEngine::moveAndLink(
        world.host, file, world.foldersOnDrive(), false, [](const JobStatus&) {}, [](std::int64_t, std::int64_t) {});
    EXPECT_EQ(Files::linkText(file), world.foldersOnDrive() / "movie");
    EXPECT_EQ(contentOf(file), "pictures");
}

TEST_F(MoverEngineTest, LeavesNothingElseOfASingleFile) {
    const fs::path file = world.home / "movie";
    makeFile(file, "pictures");
    const auto failureOfFile = [&] {
        try {
            tarvik::MoverEngine::moveAndLink(
                world.host, file, world.foldersOnDrive(), false, [](const JobStatus&) {},
                [](std::int64_t, std::int64_t) {});
        } catch (const Failure& failure) {
            return failure.description();
        }
        return std::string("moved");
    };
    world.withDitto("echo half > \"$3\"; echo \"Could not write $3\" >&2; exit 3");
    EXPECT_EQ(failureOfFile(),
              "Copy failed: ditto failed: Could not write " + (world.foldersOnDrive() / "movie").native());
    EXPECT_EQ(contentOf(world.trash->folder / "movie"), "half\n");
    EXPECT_THAT(Files::names(world.foldersOnDrive()), testing::IsEmpty());
    // While it is copied, its place is in use, whichever file the tool makes there.
    const fs::path isCopied = world.folder / "copied";
    const fs::path isSwept = world.folder / "swept";
    world.withDitto("rm -f \"$3\"; cp -a \"$2\" \"$3\"\n: > '" + isCopied.native() + "'\n" + waitFor(isSwept));
    std::thread other([&] {
        while (!Files::exists(isCopied)) std::this_thread::sleep_for(std::chrono::milliseconds(5));
        Leftovers::sweep(world.host, world.foldersOnDrive());
        makeFile(isSwept);
    });
    EXPECT_EQ(failureOfFile(), "moved");
    other.join();
    EXPECT_EQ(contentOf(file), "pictures");
    EXPECT_EQ(Files::names(world.foldersOnDrive()), std::vector<std::string>{"movie"});
}

TEST_F(MoverEngineTest, RestoresWhatItMoved) {
    move();
    tarvik::MoverEngine::restore(world.host, source);
    EXPECT_EQ(pictureOf(source), picture);
    EXPECT_FALSE(Files::itemExists(destination));
}

TEST_F(MoverEngineTest, TakesADanglingLinkForAMissingSource) {
    fs::remove_all(source);
    makeLink(source, "nowhere");
    EXPECT_EQ(failureOfMove(), "Source path no longer exists.");
    EXPECT_TRUE(Files::isSymbolicLink(source));
    EXPECT_FALSE(Files::itemExists(world.foldersOnDrive()));
}

TEST_F(MoverEngineTest, PassesOnTheFileErrorOfAParentFolder) {
    makeFile(world.drive / "ExternalTarvik", "a file in the way");
    EXPECT_THROW(move(), FileError);
    EXPECT_EQ(pictureOf(source), picture);
}

TEST_F(MoverEngineTest, LeavesAnOccupiedDestinationAlone) {
    makeFile(destination / "first", "1");
    EXPECT_EQ(failureOfMove(), "Destination already exists.");
    EXPECT_EQ(contentOf(destination / "first"), "1");
    EXPECT_EQ(pictureOf(source), picture);
}

TEST_F(MoverEngineTest, LeavesADanglingLinkAtTheDestinationAlone) {
    makeLink(destination, "nowhere");
    EXPECT_EQ(failureOfMove(), "Destination already exists.");
    EXPECT_TRUE(Files::isSymbolicLink(destination));
}

/// Another move takes the destination in the moment between the look and the copy.
class RivalVolumes : public MadeVolumes {
public:
    explicit RivalVolumes(fs::path place) : m_place(std::move(place)) {}
    std::optional<std::int64_t> availableBytes(const fs::path&) const override {
        makeFile(m_place / "song.txt", "other");
        return std::nullopt;
    }

private:
    fs::path m_place;
};

TEST_F(MoverEngineTest, LeavesThePlaceToAnotherMoveThatWasFaster) {
    world.host.volumes = std::make_shared<RivalVolumes>(destination);
    EXPECT_EQ(failureOfMove(), "Destination already exists.");
    EXPECT_EQ(pictureOf(source), picture);
    EXPECT_EQ(contentOf(destination / "song.txt"), "other");
}

TEST_F(MoverEngineTest, LeavesThePlaceToWhatComesThereDuringTheCopy) {
    world.withDitto("cp -aT \"$2\" \"$3\"; mkdir '" + destination.native() + "'; : > '" + destination.native() +
                    "/other'");
    EXPECT_EQ(failureOfMove(), "Destination already exists.");
    EXPECT_EQ(pictureOf(source), picture);
    EXPECT_EQ(Files::names(destination), std::vector<std::string>{"other"});
    EXPECT_EQ(Files::names(world.foldersOnDrive()), std::vector<std::string>{"Music"});
    EXPECT_EQ(world.namesAtHome(), std::vector<std::string>{"Music"});
}

TEST_F(MoverEngineTest, LeavesThePlaceToACopyThatIsUnderWay) {
    makeFolder(world.foldersOnDrive());
    auto other = HiddenPlace::claimForCopyTo(destination);
    world.withDitto("exit 3");
    EXPECT_EQ(failureOfMove(), "Destination already exists.");
    EXPECT_TRUE(Files::exists(other.path));
    // A killed one holds nothing any more.
    other.held.close();
    world.withDitto(R"(cp -aT "$2" "$3")");
    move();
    EXPECT_EQ(pictureOf(destination), picture);
    EXPECT_EQ(Files::names(world.foldersOnDrive()), std::vector<std::string>{"Music"});
}

TEST_F(MoverEngineTest, NeverShowsHalfACopyUnderTheItemsName) {
    world.withDitto("[ ! -e '" + destination.native() + "' ] && cp -aT \"$2\" \"$3\" && [ ! -e '" +
                    destination.native() + "' ]");
    move();
    EXPECT_EQ(pictureOf(destination), picture);
}

TEST_F(MoverEngineTest, SpeaksOfTheItemByItsOwnName) {
    world.withDitto("echo \"Could not write $3/song.txt: it is tired\" >&2; exit 3");
    EXPECT_EQ(failureOfMove(),
              "Copy failed: ditto failed: Could not write " + destination.native() + "/song.txt: it is tired");
    world.withDitto("exit 0");
    EXPECT_EQ(failureOfMove(), "Verification failed: Music is missing at the destination.");
}

TEST_F(MoverEngineTest, RefusesASecondMoveOfTheSameItem) {
    move();
    const std::string first = pictureOf(destination);
    fs::remove(source);
    makeFile(source / "other", "new");
    EXPECT_EQ(failureOfMove(), "Destination already exists.");
    EXPECT_EQ(pictureOf(destination), first);
    EXPECT_EQ(contentOf(source / "other"), "new");
}

TEST_F(MoverEngineTest, FailsWithoutEnoughSpace) {
    makeFileOfSize(source / "big", 3'000'000);
    world.volumes->available = 1'000'000;
    EXPECT_THAT(failureOfMove(), testing::MatchesRegex("Not enough space. Need 3 MB, have 1 MB."));
    EXPECT_TRUE(Files::exists(source / "big"));
    EXPECT_TRUE(Files::exists(world.foldersOnDrive()));
    EXPECT_FALSE(Files::itemExists(destination));
}

TEST_F(MoverEngineTest, MovesWhenTheFreeSpaceIsUnknown) {
    world.volumes->available = 0;
    move();
    EXPECT_TRUE(Files::isSymbolicLink(source));
}

TEST_F(MoverEngineTest, MovesWhenTheFreeSpaceIsExactlyTheSize) {
    makeFileOfSize(source / "big", 40'960);
    flush(source / "song.txt");
    std::int64_t size = 0;
    for (const char* name : {"big", "song.txt"}) size += Files::info(source / name)->allocatedSize;
    world.volumes->available = size - 1;
    EXPECT_THAT(failureOfMove(), testing::StartsWith("Not enough space."));
    world.volumes->available = size;
    move();
    EXPECT_TRUE(Files::isSymbolicLink(source));
}

TEST_F(MoverEngineTest, KeepsTheOriginalWhenTheCopyFails) {
    world.withDitto(R"(mkdir -p "$3"; echo partial > "$3/song.txt"; echo "the drive is tired" >&2; exit 3)");
    EXPECT_EQ(failureOfMove(), "Copy failed: ditto failed: the drive is tired");
    EXPECT_EQ(pictureOf(source), picture);
    EXPECT_FALSE(Files::itemExists(destination));
    EXPECT_EQ(contentOf(world.trash->folder / "Music/song.txt"), "partial\n");
}

TEST_F(MoverEngineTest, KeepsTheOriginalWhenTheToolIsMissing) {
    world.host.tools.ditto = world.folder / "no/such/tool";
    EXPECT_THAT(failureOfMove(), testing::MatchesRegex("Copy failed: Could not start .*: No such file or directory"));
    EXPECT_EQ(pictureOf(source), picture);
}

TEST_F(MoverEngineTest, KeepsTheOriginalWhenTheCopyIsIncomplete) {
    world.withDitto(R"(cp -aT "$2" "$3"; rm "$3/song.txt")");
    EXPECT_EQ(failureOfMove(), "Verification failed: Music copied with 7 of 8 entries — 1 missing.");
    EXPECT_EQ(pictureOf(source), picture);
    EXPECT_FALSE(Files::itemExists(destination));
    EXPECT_TRUE(Files::exists(world.trash->folder / "Music"));
}

TEST_F(MoverEngineTest, KeepsWhatWasWrittenWhileItWasCopied) {
    world.withDitto(R"(cp -aT "$2" "$3"; printf 'ha ha' > "$2/song.txt")");
    EXPECT_EQ(failureOfMove(), "Verification failed: Music/song.txt was changed while it was copied.");
    EXPECT_EQ(contentOf(source / "song.txt"), "ha ha");
    EXPECT_FALSE(Files::itemExists(destination));
}

TEST_F(MoverEngineTest, KeepsTheOriginalWhenAnotherVolumeTakesTheDrivesPlace) {
    // The copy is complete, but it is not on the drive.
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const RealVolume other = RealVolume::memory(world.folder.path(), 1'000'000);
    const std::string parent = world.foldersOnDrive().native();
    world.withDitto("rm -r '" + parent + "' && ln -s '" + other.path().native() + "' '" + parent +
                    "' && mkdir -p \"$(dirname \"$3\")\" && cp -aT \"$2\" \"$3\"");
    EXPECT_EQ(failureOfMove(), "Verification failed: The target drive was disconnected while it was written to.");
    EXPECT_EQ(pictureOf(source), picture);
    EXPECT_FALSE(Files::itemExists(destination));
}

TEST_F(MoverEngineTest, StashesTheCopyWhenTheOriginalCannotBeRemoved) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    std::optional<RealVolume> inside;
    const auto mountsInside = [&](const JobStatus& status) {
        if (status == JobStatus::linking()) inside.emplace(RealVolume::memory(source / "empty", 1'000'000));
    };
    try {
        tarvik::MoverEngine::moveAndLink(world.host, source, world.foldersOnDrive(), false, mountsInside,
                                         [](std::int64_t, std::int64_t) {});
        FAIL() << "a volume is mounted in it";
    } catch (const MoverError& error) {
        EXPECT_EQ(error.kind(), MoverError::Case::sourceRemoveFailed);
        EXPECT_EQ(error.description(), "Could not remove original after copy: Could not remove the mounted volume " +
                                           inside->path().native() + ": " + wordsFor(EBUSY));
    }
    inside.reset();
    EXPECT_EQ(pictureOf(source), picture);
    EXPECT_FALSE(Files::itemExists(destination));
    EXPECT_EQ(pictureOf(world.trash->folder / "Music"), picture);
}

TEST_F(MoverEngineTest, StashesTheCopyWhenTheOriginalHasGoneByItself) {
    const auto removesSource = [this](const JobStatus& status) {
        if (status == JobStatus::linking()) fs::remove_all(source);
    };
    try {
        tarvik::MoverEngine::moveAndLink(world.host, source, world.foldersOnDrive(), false, removesSource,
                                         [](std::int64_t, std::int64_t) {});
        FAIL() << "there was nothing to remove";
    } catch (const MoverError& error) {
        EXPECT_EQ(error.description(), "Could not remove original after copy: Could not remove " + source.native() +
                                           ": No such file or directory");
    }
    EXPECT_FALSE(Files::itemExists(source));
    EXPECT_FALSE(Files::itemExists(destination));
    EXPECT_EQ(pictureOf(world.trash->folder / "Music"), picture);
}

TEST_F(MoverEngineTest, KeepsWhatWasWrittenInTheLastMomentBeforeTheRemoval) {
    const auto writes = [this](const JobStatus& status) {
        if (status == JobStatus::linking()) makeFile(source / "late.txt", "saved just now");
    };
    EXPECT_THROW(tarvik::MoverEngine::moveAndLink(world.host, source, world.foldersOnDrive(), false, writes,
                                                  [](std::int64_t, std::int64_t) {}),
                 MoverError);
    EXPECT_EQ(contentOf(source / "late.txt"), "saved just now");
    EXPECT_EQ(contentOf(source / "song.txt"), "la la");
    EXPECT_EQ(world.namesAtHome(), std::vector<std::string>{"Music"});
    EXPECT_FALSE(Files::itemExists(destination));
}

TEST_F(MoverEngineTest, StashesBesideTheCopyWhenTheTrashRefuses) {
    world.trash->refuses = true;
    world.withDitto(R"(mkdir -p "$3"; exit 1)");
    EXPECT_EQ(failureOfMove(), "Copy failed: ditto failed: exit 1");
    EXPECT_FALSE(Files::itemExists(destination));
    EXPECT_TRUE(Files::isFolder(world.foldersOnDrive() / ".TarvikTrash" / ("Music-" + std::to_string(madeNow))));
    EXPECT_EQ(Files::names(world.foldersOnDrive()), std::vector<std::string>{".TarvikTrash"});
}

TEST_F(MoverEngineTest, FailsForASocketThatTheCopyDrops) {
    world.withDitto(R"(cp -aT "$2" "$3"; rm "$3/socket")");
    makeSocket(source / "socket");
    EXPECT_EQ(failureOfMove(), "Verification failed: Music copied with 8 of 9 entries — 1 missing.");
    EXPECT_TRUE(Files::itemExists(source / "socket"));
}

TEST_F(MoverEngineTest, LeavesTheLinkWhenTheTargetOfARestoreIsGone) {
    makeLink(world.home / "old", world.drive / "gone");
    EXPECT_EQ(failureOfRestore(world.home / "old"), "Source path no longer exists.");
    EXPECT_EQ(Files::linkText(world.home / "old"), world.drive / "gone");
}

TEST_F(MoverEngineTest, PassesOnTheErrorWhenARestoreMeetsNoLink) {
    EXPECT_EQ(failureOfRestore(source), "Could not read the link " + source.native() + ": Invalid argument");
    EXPECT_EQ(pictureOf(source), picture);
}

TEST_F(MoverEngineTest, TakesARelativeLinkTextFromTheWorkingDirectory) {
    makeLink(world.home / "relative", "Music");
    EXPECT_EQ(failureOfRestore(world.home / "relative"), "Source path no longer exists.");
    EXPECT_TRUE(Files::isSymbolicLink(world.home / "relative"));
    EXPECT_EQ(pictureOf(source), picture);
}

TEST_F(MoverEngineTest, HandlesNamesThatAreHardToSpell) {
    const std::vector<std::string> names = {"with spaces", "it's \"quoted\"",    "line\nbreak", std::string(255, 'n'),
                                            "🎵 emoji",     "e\xcc\x81t\xc3\xa9", "\xff\xfe",    "-rf",
                                            "*?[]$(x)"};
    for (const auto& name : names) {
        const fs::path folder = world.home / name;
        makeFile(folder / name, name);
        tarvik::MoverEngine::moveAndLink(
            world.host, folder, world.foldersOnDrive(), false, [](const JobStatus&) {},
            [](std::int64_t, std::int64_t) {});
        EXPECT_EQ(Files::linkText(folder), world.foldersOnDrive() / name);
        EXPECT_EQ(contentOf(folder / name), name);
        tarvik::MoverEngine::restore(world.host, folder);
        EXPECT_TRUE(Files::isFolder(folder));
        EXPECT_EQ(contentOf(folder / name), name);
    }
}

}  // namespace tarvik::test
