#include "Platform/Files/Files.h"
#include "Support/FailureOf.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"
#include "UninstallRun/UninstallSessionStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik::test {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

AppUninstallSession sessionOf(const std::string& id, int second) {
    AppUninstallSession session{.id = id, .appPath = "/Applications/Foo.app", .appName = "Foo"};
    session.createdAt = std::chrono::system_clock::time_point(std::chrono::seconds(1'794'764'743 + second));
    session.movedItems.push_back({.originalPath = "/Applications/Foo.app",
                                  .category = UninstallCategory::executable,
                                  .sizeBytes = 3,
                                  .trashedTo = "/Users/ada/.Trash/Foo.app",
                                  .succeeded = true});
    return session;
}

std::vector<std::string> idsIn(const fs::path& root) {
    std::vector<std::string> ids;
    for (const auto& session : UninstallSessionStore::list(root)) ids.push_back(session.id);
    return ids;
}

}  // namespace

TEST(UninstallSessionStore, WritesSortedKeysForPeople) {
    const TemporaryFolder folder;
    UninstallSessionStore::save(sessionOf("20261115_174543", 0), folder / "deep/root");
    EXPECT_EQ(contentOf(folder / "deep/root/20261115_174543/session.json"), R"({
  "appName": "Foo",
  "appPath": "/Applications/Foo.app",
  "createdAt": 816457543.0,
  "dryRun": false,
  "forgottenReceipts": [],
  "id": "20261115_174543",
  "movedItems": [
    {
      "category": "executable",
      "originalPath": "/Applications/Foo.app",
      "sizeBytes": 3,
      "succeeded": true,
      "trashedTo": "/Users/ada/.Trash/Foo.app"
    }
  ]
}
)");
}

TEST(UninstallSessionStore, ListsTheNewestFirstWithoutWhatCannotBeRead) {
    const TemporaryFolder root;
    EXPECT_THAT(idsIn(root / "missing"), IsEmpty());
    for (const auto& [id, second] : {std::pair("b", 3), std::pair("c", 2), std::pair("a", 1)})
        UninstallSessionStore::save(sessionOf(id, second), root.path());
    makeFile(root / "damaged/session.json", "{}");
    makeFolder(root / "empty");
    makeFile(root / ".hidden/session.json", contentOf(root / "a/session.json"));
    EXPECT_THAT(idsIn(root.path()), ElementsAre("b", "c", "a"));
}

TEST(UninstallSessionStore, LoadsAndFinds) {
    const TemporaryFolder root;
    const auto session = sessionOf("20261115_174543", 0);
    UninstallSessionStore::save(session, root / "sessions");
    EXPECT_EQ(UninstallSessionStore::load(root / "sessions/20261115_174543"), session);
    EXPECT_EQ(UninstallSessionStore::find("20261115_174543", root / "sessions"), session);
    EXPECT_EQ(UninstallSessionStore::find("sessions/20261115_174543", root.path()), std::nullopt);
    EXPECT_EQ(UninstallSessionStore::find("..", root / "sessions/20261115_174543"), std::nullopt);
    EXPECT_EQ(UninstallSessionStore::load(root / "missing"), std::nullopt);
}

TEST(UninstallSessionStore, WritesTheRecordOfALaterRunOverAnEarlierOne) {
    const TemporaryFolder root;
    UninstallSessionStore::save(sessionOf("a", 1), root.path());
    UninstallSessionStore::save(sessionOf("a", 2), root.path());
    EXPECT_EQ(UninstallSessionStore::find("a", root.path()), sessionOf("a", 2));
}

TEST(UninstallSessionStore, TellsWhatItCannotWrite) {
    const TemporaryFolder root;
    makeFile(root / "a", "in the way");
    EXPECT_THAT(failureOf([&] { UninstallSessionStore::save(sessionOf("a", 1), root.path()); }),
                HasSubstr("Could not create the folder "));
}

}  // namespace tarvik::test
