#include "Backups/BackupNames.h"
#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"
#include "Support/OrdinaryUser.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gtest/gtest.h>

namespace tarvik {
namespace {

using test::contentOf;
using test::makeFile;
using test::World;
using Names = std::vector<std::string>;

TEST(BackupNames, ShowNoTraceOfTheProgram) {
    EXPECT_EQ(BackupNames::visible("Tarvik notes.txt"), "App notes.txt");
    EXPECT_EQ(BackupNames::visible("tarvik-Tarvik-tarvik"), "app-App-app");
    EXPECT_EQ(BackupNames::visible("TarvikTarvik"), "AppApp");
    for (const auto* name : {"", "TARVIK", "tArvik", "Tarvi", "App", "写真", "\xFFtarvi"})
        EXPECT_EQ(BackupNames::visible(name), name);
    EXPECT_EQ(BackupNames::visible("\xFFtarvik\xFF"),
              "\xFF"
              "app\xFF");
}

TEST(BackupNames, OfApplicationsAreOneName) {
    for (const auto* name : {"Logic Pro.app", "Foo.APP", ".app", "Tarvik.App", "caf\xE9.app"})
        EXPECT_EQ(BackupNames::ofSource(fs::path("/Applications") / name), "InstalledApp.app") << name;
    for (const auto* name : {"app", "App", "APP"})
        EXPECT_EQ(BackupNames::ofSource(fs::path("/src") / name), "SourceApp") << name;
    EXPECT_EQ(BackupNames::ofSource("/src/Tarvik"), "App") << "no clash with a folder called app";
    EXPECT_EQ(BackupNames::ofSource("/src/My Tarvik.application"), "My App.application");
    EXPECT_EQ(BackupNames::ofSource("/Tarvik/Music"), "Music");
}

TEST(BackupNames, AreGivenAtEveryDepth) {
    const World world;
    const auto root = world.drive / "Tarvik";
    makeFile(root / "Tarvik/tarvik-data/Tarvik notes.txt", "1");
    makeFile(root / "Tarvik/plain", "2");
    makeFile(root / ".tarvik", "3");
    test::makeLink(root / "Tarvik link", "Tarvik/plain");
    test::makeLink(root / "Tarvik dangling", "nowhere");
    BackupNames::sanitizeVisibleNames(world.host, root);
    EXPECT_EQ(contentOf(root / "App/app-data/App notes.txt"), "1") << "the root keeps its name";
    EXPECT_EQ(contentOf(root / "App/plain"), "2");
    EXPECT_EQ(Files::names(root), (Names{".app", "App", "App dangling", "App link"}));
    EXPECT_EQ(Files::linkText(root / "App link"), "Tarvik/plain") << "what a file holds stays";
}

TEST(BackupNames, SetAsideWhatBearsThemAlready) {
    World world;
    makeFile(world.drive / "Tarvik", "renamed");
    makeFile(world.drive / "App", "in the way");
    BackupNames::sanitizeVisibleNames(world.host, world.drive);
    EXPECT_EQ(contentOf(world.drive / "App"), "renamed");
    EXPECT_EQ(contentOf(world.trash->folder / "App"), "in the way");

    world.trash->refuses = true;
    makeFile(world.drive / "Tarvik", "newer");
    BackupNames::sanitizeVisibleNames(world.host, world.drive);
    EXPECT_EQ(contentOf(world.drive / "App"), "newer");
    EXPECT_EQ(contentOf(world.drive / ".TarvikTrash/App-backup-name-conflict-2026-11-15T174543Z"), "renamed");
}

TEST(BackupNames, PassOverWhatWentWithASetAsideFolder) {
    const World world;
    makeFile(world.drive / "TarvikTarvikTarvikTarvik/file", "stays");
    makeFile(world.drive / "AppAppAppApp/Tarvik", "goes");
    BackupNames::sanitizeVisibleNames(world.host, world.drive);
    EXPECT_EQ(contentOf(world.drive / "AppAppAppApp/file"), "stays");
    EXPECT_EQ(contentOf(world.trash->folder / "AppAppAppApp/Tarvik"), "goes");
}

TEST(BackupNames, AreNotGivenWhereNothingCanBeRead) {
    const World world;
    makeFile(world.drive / "Tarvik file", "content");
    BackupNames::sanitizeVisibleNames(world.host, world.drive / "Tarvik file");
    BackupNames::sanitizeVisibleNames(world.host, world.drive / "nothing");
    EXPECT_EQ(contentOf(world.drive / "Tarvik file"), "content");
}

TEST(BackupNames, FailWhereNothingMayBeRenamed) {
    const World world;
    makeFile(world.drive / "sealed/Tarvik", "content");
    constexpr auto readable = static_cast<fs::perms>(0555);
    fs::permissions(world.drive / "sealed", readable);
    const test::OrdinaryUser user(world.folder.path());
    EXPECT_THROW(BackupNames::sanitizeVisibleNames(world.host, world.drive), FileError);
    EXPECT_TRUE(Files::exists(world.drive / "sealed/Tarvik"));
}

}  // namespace
}  // namespace tarvik
