#include "Platform/Machine/Host.h"
#include "Platform/Machine/ToolRules.h"
#include "Platform/Processes/CommandRunner.h"
#include "Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarvik {
namespace {

using testing::UnorderedElementsAre;
using InFolder = ToolRule::InFolder;

const fs::path madeStandIns = "/made/stand-ins";

/// What a machine in a folder gets on a Mac, by the names of the tools.
std::vector<std::string> toolsThatGet(InFolder wanted) {
    const ToolTable tools = ToolRules::inFolder(ToolRules::ofMac(), madeStandIns);
    std::vector<std::string> names;
    for (const ToolRule& rule : ToolRules::all()) {
        const fs::path& tool = tools.*rule.tool;
        const InFolder given = tool.empty()                         ? InFolder::none
                               : tool.parent_path() == madeStandIns ? InFolder::standIn
                                                                    : InFolder::itself;
        if (given == wanted) names.emplace_back(rule.name);
    }
    return names;
}

TEST(ToolRules, AMachineInAFolderGetsTheRealToolOnlyWhereItChangesNothingBeyondWhatItIsGiven) {
    EXPECT_THAT(toolsThatGet(InFolder::itself),
                UnorderedElementsAre("ditto", "find", "ps", "xar", "xattr", "external-app-launcher"));
}

TEST(ToolRules, AMachineInAFolderGetsAStandInForWhatKnowsAWholeMachine) {
    EXPECT_THAT(toolsThatGet(InFolder::standIn), UnorderedElementsAre("codesign", "xcrun", "spctl", "mdutil", "pkgutil",
                                                                      "hdiutil", "installer", "bash", "rootferry"));
}

TEST(ToolRules, AMachineInAFolderGetsNothingThatWouldChangeTheMachineThatRuns) {
    EXPECT_THAT(toolsThatGet(InFolder::none), UnorderedElementsAre("lsregister", "tmutil"));
}

TEST(ToolRules, HoldForEveryMachineInAFolder) {
    const test::TemporaryFolder folder;
    const ToolTable tools = Host::rootedAt(folder.path(), folder.path()).tools;
    EXPECT_EQ(tools, ToolRules::inFolder(systemTools(), ToolRules::standIns()));
    EXPECT_EQ(tools.pkgutil, ToolRules::standIns() / "pkgutil");
    EXPECT_EQ(tools.bash, ToolRules::standIns() / "bash");
    EXPECT_EQ(tools.tmutil, fs::path());
    for (const ToolRule& rule : ToolRules::all())
        if (rule.inFolder == InFolder::none) {
            EXPECT_EQ(CommandRunner::run(tools.*rule.tool, {}).status, CommandResult::notLaunched) << rule.name;
        }
}

TEST(ToolRules, TellWhereAMacHasItsTools) {
    const ToolTable tools = ToolRules::ofMac();
    for (const ToolRule& rule : ToolRules::all()) {
        EXPECT_TRUE((tools.*rule.tool).is_absolute()) << rule.name;
        EXPECT_EQ((tools.*rule.tool).filename(), rule.name);
        EXPECT_NE(rule.reason, "") << rule.name;
    }
    for (const fs::path& path : {tools.ditto, tools.find, tools.codesign, tools.xcrun, tools.tmutil, tools.mdutil,
                                 tools.hdiutil, tools.xar, tools.xattr})
        EXPECT_EQ(path.parent_path(), "/usr/bin") << path;
    for (const fs::path& path : {tools.spctl, tools.pkgutil, tools.installer})
        EXPECT_EQ(path.parent_path(), "/usr/sbin") << path;
    EXPECT_EQ(tools.ps, "/bin/ps");
    EXPECT_EQ(tools.bash, "/bin/bash");
    EXPECT_EQ(tools.rootferry, "/usr/local/bin/rootferry");
}

TEST(ToolRules, EveryToolOfThisSystemHasAnAbsolutePath) {
    const ToolTable tools = systemTools();
    for (const ToolRule& rule : ToolRules::all()) {
        EXPECT_TRUE((tools.*rule.tool).is_absolute()) << rule.name;
        EXPECT_EQ((tools.*rule.tool).filename(), rule.name);
    }
}

}  // namespace
}  // namespace tarvik
