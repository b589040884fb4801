#include "StandIns/StandInRun.h"
#include "Support/EnvironmentVariable.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarvik::test {
namespace {

class MdutilIndexingState : public testing::Test {
protected:
    MdutilIndexingState() {
        makeFolder(folder / "Volumes/Drive/Folder");
        makeFolder(folder / "System/Volumes/Data");
    }

    std::string stateOf(const fs::path& volume, int status) const {
        const auto result = runStandIn("mdutil", {"-s", volume});
        EXPECT_EQ(result.status, status) << volume;
        EXPECT_EQ(result.stderr, "");
        EXPECT_EQ(result.stdout.substr(0, volume.native().size() + 3), volume.native() + ":\n\t");
        return result.stdout.substr(volume.native().size() + 3);
    }

    TemporaryFolder folder;
};

constexpr const char* enabled = "Indexing enabled. \n";
constexpr const char* unknown = "Error: unknown indexing state.\n";

TEST_F(MdutilIndexingState, TheVolumesOfAMachineInAFolderAreIndexed) {
    const EnvironmentVariable root("TARVIK_ROOT", folder.path().native());
    for (const char* volume : {"", "System/Volumes/Data", "Volumes/Drive"})
        EXPECT_EQ(stateOf(folder / volume, 0), enabled) << volume;
}

TEST_F(MdutilIndexingState, AFileAtItsTopKeepsAVolumeOut) {
    const EnvironmentVariable root("TARVIK_ROOT", folder.path().native());
    makeFile(folder / "Volumes/Drive/.metadata_never_index", "");
    EXPECT_EQ(stateOf(folder / "Volumes/Drive", 0), "Indexing disabled.\n");
    EXPECT_EQ(stateOf(folder.path(), 0), enabled);
}

TEST_F(MdutilIndexingState, WhatIsNoVolumeOfTheMachineIsUnknown) {
    const EnvironmentVariable root("TARVIK_ROOT", folder.path().native());
    makeLink(folder / "Volumes/Out", "/");
    makeFile(folder / "Volumes/file");
    for (const char* path :
         {"Volumes/Drive/Folder", "Volumes", "Volumes/none", "System", "Volumes/Out", "Volumes/file"})
        EXPECT_EQ(stateOf(folder / path, 1), unknown) << path;
    EXPECT_EQ(stateOf("/", 1), unknown);
}

TEST_F(MdutilIndexingState, TheMachineThatRunsIsNeverAsked) {
    const EnvironmentVariable root("TARVIK_ROOT", "/");
    EXPECT_EQ(stateOf("/", 1), unknown);
    EXPECT_EQ(stateOf(folder / "Volumes/Drive", 1), unknown);
}

TEST_F(MdutilIndexingState, WantsVolumesAndKnowsNoOtherOption) {
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{}, {"-s"}, {"-i", "on", "/"}, {"/"}}) {
        const auto result = runStandIn("mdutil", arguments);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.stderr, "Usage: mdutil -s volume ...\n");
    }
}

}  // namespace
}  // namespace tarvik::test
