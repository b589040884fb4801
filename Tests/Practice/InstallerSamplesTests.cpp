#include "Installers/Inspection/InstallerInspector.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/Host.h"
#include "Practice/PracticeMachine.h"
#include "Support/EnvironmentVariable.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarvik {
namespace {

using testing::ElementsAre;

/// The sources on a practice machine, looked at with the tools that a machine in a folder has.
class InstallerSamples : public testing::Test {
protected:
    InstallerInspection inspected(const std::string& name) const {
        return InstallerInspector::inspect(host, sources / name);
    }
    /// "kind label" of each.
    static std::vector<std::string> itemsOf(const InstallerInspection& inspection) {
        std::vector<std::string> items;
        for (const InstallableItem& item : inspection.items)
            items.push_back(std::string(textOf(item.kind)) + " " + item.label);
        return items;
    }

    test::TemporaryFolder folder;
    Practice::Machine machine = Practice::build(folder / "machine", {.apps = 0, .files = 0});
    Host host = Host::rootedAt(machine.root, machine.home);
    test::EnvironmentVariable root{"TARVIK_ROOT", machine.root};
    fs::path sources = machine.root / "Installers";
};

TEST_F(InstallerSamples, AreOfEveryKind) {
    EXPECT_THAT(Files::names(sources),
                ElementsAre("Awl signed.pkg", "Burr unsigned.pkg", "Chisel Suite.pkg", "Drill and Easel.mpkg",
                            "Fret.dmg", "Inlay.zip", "Two volumes.dmg", "make a note.command", "say hello.sh"));
    EXPECT_FALSE(Files::itemExists(machine.root / ".workshop"));
}

TEST_F(InstallerSamples, HoldApplications) {
    EXPECT_THAT(itemsOf(inspected("Fret.dmg")), ElementsAre("app Fret.app"));
    EXPECT_THAT(itemsOf(inspected("Two volumes.dmg")), ElementsAre("app Gouge.app", "app Hasp.app"));
    EXPECT_THAT(itemsOf(inspected("Inlay.zip")), ElementsAre("app Inlay.app"));
}

TEST_F(InstallerSamples, AreTrustedOnlyWhereTheMachineKnowsWhoSigned) {
    EXPECT_EQ(inspected("Awl signed.pkg").trust.status, TrustSummary::trusted);
    const auto unsignedOne = inspected("Burr unsigned.pkg");
    EXPECT_EQ(unsignedOne.trust.status, TrustSummary::untrusted);
    EXPECT_TRUE(unsignedOne.trust.hasScripts);
    EXPECT_EQ(inspected("Drill and Easel.mpkg").kind, InstallerKind::mpkg);
    EXPECT_EQ(inspected("say hello.sh").kind, InstallerKind::script);
}

TEST_F(InstallerSamples, AreTheSameOnEveryRun) {
    const auto again = Practice::build(folder / "again", {.apps = 0, .files = 0});
    EXPECT_EQ(test::pictureOf(again.root / "Installers"), test::pictureOf(sources));
}

}  // namespace
}  // namespace tarvik
