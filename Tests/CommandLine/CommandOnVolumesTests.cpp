#include "CommandLine/CommandWorld.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <optional>
#include <unistd.h>

namespace tarvik {

namespace {

using test::CommandWorld;
using test::RealVolume;
using testing::HasSubstr;
using testing::MatchesRegex;

/// Copies, unless the test has put a file "catch" beside it: then it stands in the middle of its work until it is
/// ended.
constexpr auto catchableDitto = R"(here="${0%/*}"
if [ ! -e "$here/catch" ]; then cp -aT "$2" "$3"; exit; fi
mkdir -p "$3"; echo part > "$3/part"; echo caught > "$here/caught"; exec sleep 600)";

/// A practice machine with one more drive, which is a real file system.
class CommandOnVolumes : public testing::TestWithParam<RealVolume::Kind> {
protected:
    void SetUp() override { TARVIK_NEEDS_VOLUMES_OF_KIND(GetParam()); }

    const RealVolume& makeVolume(std::int64_t bytes) {
        const auto volumes = world.machine.root / "Volumes";
        return volume.emplace(GetParam() == RealVolume::Kind::ext4 ? RealVolume::ext4(volumes, bytes)
                                                                   : RealVolume::memory(volumes, bytes));
    }
    fs::path moved(const fs::path& folder) const {
        return volume->path() / "ExternalTarvik/Folders" / folder.filename();
    }
    test::Finished move(const fs::path& folder) const {
        return world.run({"move", "folder", folder.native(), "--drive", volume->path().native(), "--yes"});
    }
    test::Finished moveBack(const fs::path& link) const {
        return world.run({"move", "restore", link.native(), "--yes"});
    }

    CommandWorld world;
    std::optional<RealVolume> volume;
};

std::string nameOf(const testing::TestParamInfo<RealVolume::Kind>& kind) {
    return kind.param == RealVolume::Kind::ext4 ? "Ext4" : "Memory";
}

INSTANTIATE_TEST_SUITE_P(Kinds, CommandOnVolumes, testing::Values(RealVolume::Kind::ext4, RealVolume::Kind::memory),
                         nameOf);

/// A folder on its way back from a real volume, caught in the middle of the copy.
class InterruptedRestore : public testing::Test {
protected:
    InterruptedRestore() : world(catchableDitto) {}

    void SetUp() override {
        TARVIK_NEEDS_MADE_TOOLS();
        TARVIK_NEEDS_MEMORY_VOLUMES();
        volume.emplace(RealVolume::memory(world.machine.root / "Volumes", 64'000'000));
        before = test::pictureOf(world.library);
        ASSERT_EQ(
            world.run({"move", "folder", world.library.native(), "--drive", volume->path().native(), "--yes"}).status,
            0);
        target = fs::read_symlink(world.library);
        besides = test::pictureOf(world.library.parent_path());
    }

    /// Sends `signal` to the whole group, as a terminal does.
    test::Finished interruptedBy(int signal, const std::vector<std::string>& alsoWanted = {}) {
        const auto tools = world.command.parent_path() / "stand-ins";
        test::makeFile(tools / "catch");
        std::vector<std::string> arguments = {"move", "restore", world.library.native(), "--yes"};
        arguments.insert(arguments.end(), alsoWanted.begin(), alsoWanted.end());
        test::RunningProgram program(world.command, world.onMachine(arguments));
        for (int tenths = 0; tenths < 600 && !fs::exists(tools / "caught"); ++tenths) ::usleep(100000);
        EXPECT_TRUE(fs::exists(tools / "caught"));
        program.signalGroup(signal);
        const auto finished = program.finish();
        fs::remove(tools / "catch");
        fs::remove(tools / "caught");
        return finished;
    }

    CommandWorld world;
    std::optional<RealVolume> volume;
    std::string before, besides;
    fs::path target;
};

}  // namespace

TEST_F(InterruptedRestore, BeginsNothingMore) {
    ASSERT_EQ(world.run({"move", "app", "Tunnel", "--drive", "Studio Drive", "--yes"}).status, 0);
    const auto finished = interruptedBy(SIGINT, {"Tunnel"});
    EXPECT_EQ(finished.status, 1);
    EXPECT_THAT(finished.errors, HasSubstr("Tunnel.app: Not started: the command was asked to end.\n"));
    EXPECT_THAT(finished.errors, HasSubstr("Move back completed with 2 failures.\n"));
    EXPECT_EQ(fs::read_symlink(world.library), target);
    EXPECT_TRUE(fs::is_symlink(world.machine.root / "Applications/Tunnel.app"));
}

TEST_P(CommandOnVolumes, MovesAFolderAndBringsItBack) {
    makeVolume(64'000'000);
    const auto before = test::pictureOf(world.library);
    const auto besides = test::pictureOf(world.library.parent_path());
    const auto away = move(world.library);
    EXPECT_EQ(away.output, "Moved Logic Pro Library.bundle to " + moved(world.library).native() + ".\n");
    EXPECT_EQ(away.errors, "copying\nverifying\nlinking\n");
    EXPECT_EQ(away.status, 0);
    EXPECT_EQ(fs::read_symlink(world.library), moved(world.library));
    EXPECT_EQ(test::pictureOf(moved(world.library)), before);

    const auto back = moveBack(world.library);
    EXPECT_EQ(back.output, "Moved Logic Pro Library.bundle back to " + world.library.native() + ".\n");
    EXPECT_EQ(back.errors, "moving back\n");
    EXPECT_EQ(back.status, 0);
    EXPECT_EQ(test::pictureOf(world.library.parent_path()), besides);
    EXPECT_FALSE(fs::exists(moved(world.library)));
}

TEST_P(CommandOnVolumes, SaysThatADriveHasNoRoom) {
    makeVolume(4'000'000);
    test::makeFileOfSize(world.library / "large", 8'000'000);
    const auto before = test::pictureOf(world.machine.root);
    const auto finished = move(world.library);
    EXPECT_THAT(finished.errors, MatchesRegex("Need [0-9.]+ MB but .* has [0-9.]+ [KM]B\\.\n"));
    EXPECT_EQ(finished.output, "");
    EXPECT_EQ(finished.status, 1);
    EXPECT_EQ(test::pictureOf(world.machine.root), before);
}

TEST_P(CommandOnVolumes, SaysThatADriveIsReadOnly) {
    makeVolume(8'000'000);
    volume->remountReadOnly();
    const auto before = test::pictureOf(world.machine.root);
    const auto finished = move(world.library);
    EXPECT_EQ(finished.errors, volume->path().filename().native() + " is read-only. Choose another drive.\n");
    EXPECT_EQ(finished.status, 1);
    EXPECT_EQ(test::pictureOf(world.machine.root), before);
}

TEST_P(CommandOnVolumes, LeavesTheFolderOnADriveThatBecameReadOnlyWhenItShallComeBack) {
    makeVolume(64'000'000);
    ASSERT_EQ(move(world.library).status, 0);
    volume->remountReadOnly();
    const auto before = test::pictureOf(world.machine.root);
    const auto finished = moveBack(world.library);
    EXPECT_EQ(finished.status, 1);
    EXPECT_THAT(finished.errors, HasSubstr("Read-only file system"));
    EXPECT_EQ(test::pictureOf(world.machine.root), before);
}

TEST(CommandOnAVolume, SaysThatADriveRanFullInTheMiddleAndLeavesNothingThere) {
    TARVIK_NEEDS_REAL_VOLUMES();
    const CommandWorld world;
    // There is room for the bytes, which are none, but not for so many files.
    const auto volume = RealVolume::ext4(world.machine.root / "Volumes", 4'000'000);
    const auto folder = world.machine.home / "Many";
    for (int file = 0; file < 3000; ++file) test::makeFile(folder / std::to_string(file), "");
    const auto before = test::pictureOf(folder);
    const auto finished = world.run({"move", "folder", folder.native(), "--drive", volume.path().native(), "--yes"});
    EXPECT_THAT(finished.errors, HasSubstr("Copy failed: ditto failed: "));
    EXPECT_THAT(finished.errors, HasSubstr("No space left on device"));
    EXPECT_EQ(finished.status, 1);
    EXPECT_EQ(test::pictureOf(folder), before);
    EXPECT_TRUE(fs::is_empty(volume.path() / "ExternalTarvik/Folders"));
}

TEST_F(InterruptedRestore, LeavesTheLinkAndTheItemAndNothingElse) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const auto finished = interruptedBy(signal);
        EXPECT_EQ(finished.status, 1);
        EXPECT_THAT(finished.errors, HasSubstr("ditto failed: exit " + std::to_string(signal)));
        EXPECT_EQ(test::pictureOf(world.library.parent_path()), besides);
        EXPECT_EQ(test::pictureOf(target), before);
    }
    EXPECT_EQ(world.run({"move", "restore", world.library.native(), "--yes"}).status, 0);
    EXPECT_EQ(test::pictureOf(world.library), before);
}

TEST_F(InterruptedRestore, LeavesAHiddenPartBesideTheLinkWhenItIsKilled) {
    EXPECT_EQ(interruptedBy(SIGKILL).status, 128 + SIGKILL);
    EXPECT_EQ(fs::read_symlink(world.library), target);
    EXPECT_EQ(test::pictureOf(target), before);
    std::vector<std::string> hidden;
    for (const auto& entry : fs::directory_iterator(world.library.parent_path()))
        if (entry.path().filename().native().starts_with(".tarvik-moving-")) hidden.push_back(entry.path());
    ASSERT_EQ(hidden.size(), 1U);

    const auto again = world.run({"move", "restore", world.library.native(), "--yes"});
    EXPECT_EQ(again.status, 0) << again.errors;
    EXPECT_EQ(test::pictureOf(world.library), before);
    EXPECT_FALSE(fs::exists(target));
    EXPECT_FALSE(fs::exists(hidden.front())) << "the next restore clears it away";
}

}  // namespace tarvik
