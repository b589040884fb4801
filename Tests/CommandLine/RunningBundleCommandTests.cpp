#include "CommandLine/CommandWorld.h"
#include "Platform/RunningBundle.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {

namespace {

using test::CommandWorld;
using testing::HasSubstr;

/// The move of an application's bundle, by processes that name it in their arguments.
class MoveOfABundle : public testing::Test {
protected:
    std::vector<std::string> move() const {
        return world.onMachine({"move", "folder", bundle.native(), "--drive", "Studio Drive", "--yes"});
    }
    /// The same by a shell, which stays as the parent of the command.
    test::Finished moveBy(const fs::path& shell) const {
        std::vector<std::string> arguments = {"-c", "\"$0\" \"$@\"; exit $?", world.command.native()};
        const auto words = move();
        arguments.insert(arguments.end(), words.begin(), words.end());
        return test::runProgram(shell, arguments);
    }

    CommandWorld world;
    const fs::path bundle = world.machine.root / "Applications/Full House.app";
};

}  // namespace

TEST_F(MoveOfABundle, IsNotARunOfIt) {
    EXPECT_EQ(test::runProgram(world.command, move()).errors, "copying\nverifying\nlinking\n");
    EXPECT_TRUE(fs::is_symlink(bundle));
}

TEST_F(MoveOfABundle, MayBeAskedForByAScript) {
    const auto finished = moveBy("/bin/sh");
    EXPECT_EQ(finished.status, 0) << finished.errors;
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
    // It is called by its name alone: behind the slash of a path, all up to the bundle's would count as one.
    fs::copy_file("/bin/sh", world.folder / "editor");
    const ChildProcess editor =
        ChildProcess::start("/bin/sh", {"-c", "PATH=\"$0:$PATH\"; exec editor -c 'while :; do sleep 0.05; done' \"$1\"",
                                        world.folder.path().native(), bundle.native()});
    test::waitUntilTold(world.folder / "editor");
    for (const auto& finished : {test::runProgram(world.command, move()), moveBy("/bin/sh")}) {
        EXPECT_EQ(finished.status, 1);
        EXPECT_THAT(finished.errors, HasSubstr("App is running: Full House.app."));
    }
    EXPECT_FALSE(fs::is_symlink(bundle));
}

}  // namespace tarvik
