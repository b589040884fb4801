#include "CommandLine/CommandWorld.h"
#include "Platform/Machine/FullDiskAccess.h"
#include "Support/Linux/KeptItems.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik::test {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class FullDiskAccessCommand : public testing::Test {
protected:
    void SetUp() override {
        TARVIK_NEEDS_KEPT_ITEMS();
        makeFolder(world.machine.home / "Library/Mail");
    }

    const std::string line = FullDiskAccess::loss() + " " + FullDiskAccess::remedy() + "\n";
    CommandWorld world;
};

TEST_F(FullDiskAccessCommand, IsToldOfOnceByWhatLooksAround) {
    const KeptItems mail({world.machine.home / "Library/Mail"});
    for (const char* verb : {"apps", "links", "launchers"}) {
        const auto finished = world.run({verb, "--format", "tsv"});
        EXPECT_EQ(finished.status, 0) << verb;
        EXPECT_EQ(finished.errors, line) << verb;
        EXPECT_THAT(finished.output, Not(HasSubstr("Full Disk Access"))) << verb;
    }
    EXPECT_THAT(runProgram(world.command, world.moveOfLibrary({"--yes"})).errors, StartsWith(line));
}

TEST_F(FullDiskAccessCommand, IsNotToldOfWhereNothingIsKept) {
    EXPECT_EQ(world.run({"apps", "--format", "tsv"}).errors, "");
    const KeptItems mail({world.machine.home / "Library/Mail"});
    EXPECT_EQ(world.run({"drives", "--format", "tsv"}).errors, "");
}

}  // namespace
}  // namespace tarvik::test
