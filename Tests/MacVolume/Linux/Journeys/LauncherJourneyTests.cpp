// Launchers among applications on a disk that folds names.
#include "Discovery/AppScanner.h"
#include "Launchers/LauncherInventory.h"
#include "MacMachine.h"
#include "Platform/Files/Files.h"
#include "Support/Bundles.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace tarvik::test {

namespace {

using testing::HasSubstr;

class MacLaunchers : public WithMacApplications {
protected:
    void SetUp() override {
        WithMacApplications::SetUp();
        if (mac) suite = mac->at("Applications/Studio Suite");
    }

    /// The state of the launcher of this name.
    LauncherEntry::Condition conditionOf(const fs::path& launcher) const {
        for (const LauncherEntry& entry : LauncherInventory::list(mac->host))
            if (entry.launcher == launcher || Files::isSameItem(Files::info(entry.launcher), Files::info(launcher)))
                return entry.condition;
        throw std::runtime_error("no such launcher");
    }

    fs::path suite;
};

}  // namespace

TEST_F(MacLaunchers, ComeAndGoWithTheFolderOfTheirApplications) {
    const fs::path mixer = mac->at("Applications/Mixer.app");
    const std::string before = pictureOf(suite);
    EXPECT_EQ(mac->moveFolder(suite, mac->extended), "moved");
    EXPECT_EQ(AppScanner::launcherShimTarget(mixer), mac->extended / "ExternalTarvik/Folders/Studio Suite/Mixer.app");
    EXPECT_EQ(conditionOf(mixer), LauncherEntry::Condition::ok);
    EXPECT_EQ(mac->moveBack(suite), "back");
    EXPECT_EQ(pictureOf(suite), before);
    EXPECT_FALSE(Files::itemExists(mixer));
}

TEST_F(MacLaunchers, LeaveARealApplicationOfTheSameNameAlone) {
    const fs::path real = mac->at("Applications/MIXER.app");
    makeBundle(real, {{"CFBundleIdentifier", "org.example.other"}});
    const std::string before = pictureOf(real);
    EXPECT_EQ(mac->moveFolder(suite, mac->extended), "moved");
    EXPECT_EQ(pictureOf(real), before);
    EXPECT_EQ(mac->moveBack(suite), "back");
    EXPECT_EQ(pictureOf(real), before);
}

TEST_F(MacLaunchers, AreMadeForNamesInAnyNormalForm) {
    makeBundle(suite / "Op\u00E9ra.app", {{"CFBundleIdentifier", "org.example.opera"}});
    EXPECT_EQ(mac->moveFolder(suite, mac->extended), "moved");
    EXPECT_EQ(conditionOf(mac->at("Applications/Op\u00E9ra.app")), LauncherEntry::Condition::ok);
    EXPECT_EQ(mac->moveBack(suite), "back");
    EXPECT_FALSE(Files::itemExists(mac->at("Applications/Op\u00E9ra.app")));
}

TEST_F(MacLaunchers, TakeTheDocumentsOfTheirApplications) {
    using Dictionary = PropertyList::Dictionary;
    using List = PropertyList::List;
    const fs::path writer = suite / "\u00C9crivain.app";
    makeBundle(writer, {{"CFBundleIdentifier", "org.example.writer"},
                        {"CFBundleExecutable", "write"},
                        {"CFBundleDocumentTypes", List{Dictionary{{"CFBundleTypeExtensions", List{"letter"}}}}}});
    makeFile(writer / "Contents/MacOS/write", "#!/bin/sh\nprintf '%s|' \"$@\"\n");
    fs::permissions(writer / "Contents/MacOS/write", fs::perms::all);
    ASSERT_EQ(mac->moveFolder(suite, mac->extended), "moved");

    const fs::path launcher = mac->at("Applications/\u00C9crivain.app/Contents");
    const auto list = PropertyList::dictionaryAt(launcher / "Info.plist");
    EXPECT_NE(list.find("CFBundleDocumentTypes"), nullptr);
    const auto programs = Files::names(launcher / "MacOS");
    ASSERT_EQ(programs.size(), 1U);
    const std::string letter = mac->atHome("Lettre d'\u00E9t\u00E9.letter");
    EXPECT_EQ(runProgram(launcher / "MacOS" / programs.front(), {letter}).output, letter + "|");
}

TEST_F(MacLaunchers, AreRepairedByTheCommand) {
    ASSERT_EQ(conditionOf(mac->at("Applications/Inside.app")), LauncherEntry::Condition::missing);
    EXPECT_THAT(mac->run({"launchers", "--repair", "--yes"}).output, HasSubstr("repaired 1 Spotlight launcher"));
    EXPECT_EQ(conditionOf(mac->at("Applications/Inside.app")), LauncherEntry::Condition::ok);
}

}  // namespace tarvik::test
