// One item stays one, however its name is written.
#include "Backups/BackupPlan.h"
#include "MacMachine.h"
#include "MovePlan/AppRestore.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Bundles/RunningBundle.h"
#include "Platform/Files/Files.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace tarvik::test {

namespace {

using testing::HasSubstr;
using testing::SizeIs;

constexpr auto summer = "Lettres d'\u00E9t\u00E9";
constexpr auto summerInAnotherWay = "LETTRES d'e\u0301te\u0301";

class OneItem : public OnMacVolumes {
protected:
    void SetUp() override {
        OnMacVolumes::SetUp();
        if (!mac) return;
        letters = mac->atHome(summer);
        makeFile(letters / "one.txt", "sun");
        makeOld(letters);
    }

    fs::path backUp(const std::vector<fs::path>& things, const MacVolume& drive) const {
        BackupPlan::run(mac->host, BackupPlan::plan(mac->host, things, mac->driveInfo(drive)), {});
        return drive / "TarvikBackups" / Files::names(drive / "TarvikBackups").back();
    }

    fs::path letters;
};

class OneApplication : public WithMacApplications {};

}  // namespace

TEST_F(OneItem, IsBackedUpOnce) {
    const fs::path backup = backUp({letters, mac->atHome(summerInAnotherWay)}, mac->extended);
    EXPECT_THAT(Files::names(backup), SizeIs(2)) << "the folder and the record";
}

TEST_F(OneItem, KeepsItsPlaceInABackupForItself) {
    const fs::path other = mac->atHome("Documents") / summerInAnotherWay;
    makeFile(other / "one.txt", "another sun");
    for (const MacVolume* drive : {&mac->extended, &mac->exFat}) {
        try {
            const fs::path backup = backUp({letters, other}, *drive);
            // Each has got a name of its own then.
            std::set<std::string> contents;
            for (const std::string& name : Files::names(backup))
                if (Files::isFolder(backup / name)) contents.insert(contentOf(backup / name / "one.txt"));
            EXPECT_THAT(contents, testing::ElementsAre("another sun", "sun"));
        } catch (const Failure& failure) {
            EXPECT_THAT(failure.description(), HasSubstr("would both bear the name"));
            EXPECT_FALSE(Files::itemExists(*drive / "TarvikBackups"));
        }
    }
}

TEST_F(OneItem, ComesBackOnce) {
    ASSERT_EQ(mac->moveFolder(letters, mac->extended), "moved");
    const auto plan = AppRestore::plan(mac->host, {letters, mac->atHome(summerInAnotherWay)});
    EXPECT_THAT(plan.waysBack, SizeIs(1));
    EXPECT_THAT(plan.refused, SizeIs(0));
}

TEST_F(OneItem, TakesAnotherSpelling) {
    Files::rename(letters, mac->atHome(summerInAnotherWay));
    EXPECT_EQ(contentOf(letters / "one.txt"), "sun");
    EXPECT_THAT(Files::names(mac->machine.home), testing::Contains(summerInAnotherWay));
}

TEST_F(OneItem, IsOnItsDriveAlready) {
    const fs::path there = mac->extended / "Films";
    makeFolder(there);
    EXPECT_THAT(mac->moveFolder(mac->extended / "FILMS", mac->extended), HasSubstr("is on Extended already"));
}

TEST_F(OneApplication, WithADecomposedNameIsFoundByAComposedOne) {
    setMacFlags(mac->at("Applications"), 0);
    const fs::path editor = mac->at("Applications/E\u0301diteur.app");
    const std::string before = pictureOf(editor);
    const auto away = mac->run({"move", "app", "\u00C9diteur", "--drive", "Extended", "--yes"});
    EXPECT_EQ(away.status, 0) << away.errors;
    EXPECT_TRUE(Files::isSymbolicLink(editor));
    const auto back = mac->run({"move", "restore", "\u00E9diteur", "--yes"});
    EXPECT_EQ(back.status, 0) << back.errors;
    EXPECT_EQ(pictureOf(editor), before);
}

TEST_F(OneApplication, RunsWhateverItWasStartedBy) {
    setMacFlags(mac->at("Applications"), 0);
    const fs::path editor = mac->at("Applications/E\u0301diteur.app");
    ChildProcess program = runSleeperIn(mac->at("applications/\u00C9DITEUR.app"));
    EXPECT_THAT(mac->moveApp(editor, mac->extended), HasSubstr("App is running"));
    EXPECT_EQ(program.poll(), std::nullopt);
    EXPECT_FALSE(Files::isSymbolicLink(editor));
    program.terminate();
    program.wait();
}

}  // namespace tarvik::test
