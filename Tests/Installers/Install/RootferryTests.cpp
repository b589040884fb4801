#include "Installers/Install/Rootferry.h"
#include "Support/HostOf.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

namespace tarvik::test {

TEST(Rootferry, IsLookedForAtItsPlaceAndElseTakenForOneAtHome) {
    const TemporaryFolder folder;
    Host host = hostOf("/", folder / "ada");
    host.tools.rootferry = folder / "rootferry";
    EXPECT_EQ(Rootferry::path(host), folder / "ada/.codex/skills/rootferry/rootferry");
    makeFile(host.tools.rootferry);
    EXPECT_EQ(Rootferry::path(host), folder / "rootferry");
}

TEST(Rootferry, OfAMachineInAFolderIsNeverTheUsersOwn) {
    const TemporaryFolder folder;
    makeFile(folder / "ada/.codex/skills/rootferry/rootferry");
    Host host = hostOf(folder.path(), folder / "ada");
    EXPECT_EQ(Rootferry::path(host), fs::path());
}

}  // namespace tarvik::test
