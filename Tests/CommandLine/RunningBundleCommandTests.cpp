#include "CommandLine/CommandWorld.h"
#include "Platform/Bundles/RunningBundle.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {

namespace {

using test::CommandWorld;
using testing::HasSubstr;

/// The move of an application's bundle, by processes that name it in their arguments. Nothing else in those begins with
/// a slash: all from the first one up to the bundle's end would count as one path.
class MoveOfABundle : public testing::Test {
protected:
    MoveOfABundle() {
        test::makeFile(world.folder / "mover", "PATH='" + world.command.parent_path().native() +
                                                   "':$PATH\ntarvik --root " + world.machine.root.filename().native() +
                                                   " move folder \"$1\" --drive 'Studio Drive' --yes\nexit $?\n");
    }
    /// The move by a script, whose shell stays as the parent of the command.
    test::Finished moveBy(const fs::path& shell) const {
        return test::runProgram("/bin/sh", {"-c", "cd \"$0\"; exec \"$1\" mover \"$2\"", world.folder.path().native(),
                                            shell.native(), bundle.native()});
    }

    CommandWorld world;
    const fs::path bundle = world.machine.root / "Applications/Full House.app";
};

}  // namespace

TEST_F(MoveOfABundle, IsNoRunOfItNorIsTheScriptThatAsksForIt) {
    const auto finished = moveBy("sh");
    EXPECT_EQ(finished.errors, "copying\nverifying\nlinking\n");
    EXPECT_EQ(finished.status, 0);
    EXPECT_TRUE(fs::is_symlink(bundle));
}

TEST_F(MoveOfABundle, IsRefusedToAProgramOfItsOwn) {
    const fs::path shell = bundle / "Contents/MacOS/shell";
    test::makeFolder(shell.parent_path());
    fs::copy_file("/bin/sh", shell);
    const auto finished = moveBy(shell);
    EXPECT_EQ(finished.status, 1);
    EXPECT_THAT(finished.errors, HasSubstr("App is running: Full House.app."));
    EXPECT_FALSE(fs::is_symlink(bundle));
}

TEST_F(MoveOfABundle, IsRefusedWhileAnotherProcessNamesIt) {
    fs::copy_file("/bin/sh", world.folder / "editor");
    const ChildProcess editor =
        ChildProcess::start("/bin/sh", {"-c", "PATH=\"$0:$PATH\"; exec editor -c 'while :; do sleep 0.05; done' \"$1\"",
                                        world.folder.path().native(), bundle.native()});
    test::waitUntilTold(world.folder / "editor");
    const auto finished = moveBy("sh");
    EXPECT_EQ(finished.status, 1);
    EXPECT_THAT(finished.errors, HasSubstr("App is running: Full House.app."));
    EXPECT_FALSE(fs::is_symlink(bundle));
}

}  // namespace tarvik
