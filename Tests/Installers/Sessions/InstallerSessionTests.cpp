#include "Installers/Sessions/InstallerSession.h"
#include "Platform/Text/Json.h"

#include <gtest/gtest.h>

#include <unordered_set>

namespace tarvik {
namespace {

using namespace std::chrono_literals;

InstallerSession fullSession() {
    return {.id = "20261115_174543",
            .sourcePath = "/Users/ada/Downloads/Editor.pkg",
            .optionID = "standard",
            .createdAt = std::chrono::system_clock::time_point(1'794'764'743s + 500ms),
            .actions = {"pkg\t/Users/ada/Downloads/Editor.pkg"},
            .changedPaths = {"/Applications/Editor.app"},
            .newReceipts = {"com.acme.editor"},
            .status = InstallerSessionStatus::pendingExternalize,
            .targetDrivePath = "/Volumes/Backup",
            .pendingExternalizeApps = {"/Applications/Editor.app"}};
}

constexpr const char* fullText = R"({
  "actions": [
    "pkg\t/Users/ada/Downloads/Editor.pkg"
  ],
  "changedPaths": [
    "/Applications/Editor.app"
  ],
  "createdAt": 816457543.5,
  "id": "20261115_174543",
  "newReceipts": [
    "com.acme.editor"
  ],
  "optionID": "standard",
  "pendingExternalizeApps": [
    "/Applications/Editor.app"
  ],
  "sourcePath": "/Users/ada/Downloads/Editor.pkg",
  "status": "pendingExternalize",
  "targetDrivePath": "/Volumes/Backup"
}
)";

TEST(InstallerSessionRecord, HoldsEachFieldAndNothingElse) {
    EXPECT_EQ(Json::pretty(Json::encoded(fullSession())), fullText);
    EXPECT_EQ(Json::parsedAs<InstallerSession>(fullText), fullSession());
}

TEST(InstallerSessionRecord, OfAnEarlierVersionIsDone) {
    auto json = *Json::parsed(fullText);
    InstallerSession expected = fullSession();
    for (const char* key : {"status", "targetDrivePath", "pendingExternalizeApps"}) json.erase(key);
    expected.status = InstallerSessionStatus::done;
    expected.targetDrivePath.clear();
    expected.pendingExternalizeApps.clear();
    EXPECT_EQ(Json::parsedAs<InstallerSession>(json.dump()), expected);
}

TEST(InstallerSessionRecord, NeedsEveryOtherKeyAndAStatusThatIsKnown) {
    const auto json = *Json::parsed(fullText);
    for (const char* key : {"id", "sourcePath", "optionID", "createdAt", "actions", "changedPaths", "newReceipts"}) {
        auto broken = json;
        broken.erase(key);
        EXPECT_EQ(Json::parsedAs<InstallerSession>(broken.dump()), std::nullopt) << key;
    }
    for (const char* key : {"status", "targetDrivePath", "pendingExternalizeApps"}) {
        auto broken = json;
        broken[key] = 1;
        EXPECT_EQ(Json::parsedAs<InstallerSession>(broken.dump()), std::nullopt) << key;
    }
    auto broken = json;
    broken["status"] = "halfway";
    EXPECT_EQ(Json::parsedAs<InstallerSession>(broken.dump()), std::nullopt);
}

TEST(InstallerSessionRecord, ChangesWhatItIsTold) {
    const InstallerSession session = fullSession();
    EXPECT_EQ(session.with(std::nullopt), session);
    InstallerSession changed = session;
    changed.status = InstallerSessionStatus::failed;
    EXPECT_EQ(session.with(InstallerSessionStatus::failed), changed);
    changed.actions = {"a"};
    changed.pendingExternalizeApps = {};
    EXPECT_EQ(session.with(InstallerSessionStatus::failed, {{"a"}}, std::vector<fs::path>()), changed);
}

TEST(InstallerSessionRecord, CanStandInASet) {
    InstallerSession other = fullSession();
    other.changedPaths.emplace_back("/more");
    const std::unordered_set<InstallerSession> set = {fullSession(), other, fullSession()};
    EXPECT_EQ(set.size(), 2U);
    EXPECT_NE(std::hash<InstallerSession>()(other), std::hash<InstallerSession>()(fullSession()));
}

TEST(InstallerSessionStatuses, HaveTheirTexts) {
    for (const auto& [status, text] :
         {std::pair(InstallerSessionStatus::pendingExternalize, "pendingExternalize"),
          std::pair(InstallerSessionStatus::done, "done"), std::pair(InstallerSessionStatus::failed, "failed")}) {
        EXPECT_EQ(textOf(status), text);
        EXPECT_EQ(installerSessionStatusOf(text), status);
    }
    EXPECT_EQ(installerSessionStatusOf("Done"), std::nullopt);
}

}  // namespace
}  // namespace tarvik
