#include "Platform/Processes/CommandRunner.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {

namespace {

CommandResult practice(const std::vector<std::string>& arguments) {
    return CommandRunner::run(test::programOfThisBuild("tarvik-practice"), arguments);
}

}  // namespace

TEST(PracticeProgram, MakesAMachineAndSaysSo) {
    const test::TemporaryFolder folder;
    const auto result =
        practice({(folder / "machine").native(), "--apps", "2", "--files", "10", "--app-files", "20", "--seed", "3"});
    EXPECT_EQ(result.status, 0) << result.stderr;
    EXPECT_THAT(result.stdout,
                testing::StartsWith("Made a practice machine in " + (folder / "machine").native() + ": "));
    EXPECT_TRUE(fs::is_directory(folder / "machine/Applications"));
}

TEST(PracticeProgram, BreaksThingsWhenAsked) {
    const test::TemporaryFolder folder;
    const auto machine = (folder / "machine").native();
    EXPECT_EQ(practice({machine, "--broken", "--apps", "0", "--files", "10"}).status, 0);
    EXPECT_FALSE(fs::exists(folder / "machine/Applications/Half Removed.app/Contents/Info.plist"));
}

TEST(PracticeProgram, SaysWhyItRefuses) {
    const test::TemporaryFolder folder;
    test::makeFile(folder / "file");
    const auto result = practice({folder.path().native()});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.stdout, "");
    EXPECT_EQ(result.stderr, folder.path().native() + " is not empty: a practice machine needs a folder of its own.\n");
}

TEST(PracticeProgram, EndsWithStatusTwoForWrongUse) {
    const test::TemporaryFolder folder;
    const auto machine = (folder / "machine").native();
    const std::vector<std::vector<std::string>> wrong = {{},
                                                         {""},
                                                         {machine, "--files"},
                                                         {machine, "--files", "many"},
                                                         {machine, "--files", "-5"},
                                                         {machine, "--files", ""},
                                                         {machine, "--seed", "18446744073709551616"},
                                                         {machine, "--size", "3"},
                                                         {machine, "x"}};
    for (const auto& arguments : wrong) {
        const auto result = practice(arguments);
        EXPECT_EQ(result.status, 2) << testing::PrintToString(arguments);
        EXPECT_NE(result.stderr, "");
    }
    EXPECT_FALSE(fs::exists(machine));
}

}  // namespace tarvik
