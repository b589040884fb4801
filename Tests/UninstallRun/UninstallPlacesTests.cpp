#include "Support/HostOf.h"
#include "UninstallRun/UninstallPlaces.h"

#include <gtest/gtest.h>

namespace tarvik::test {

namespace {

bool isPlace(const fs::path& path, UninstallCategory category = UninstallCategory::caches) {
    return UninstallPlaces::isOne(hostOf("/", "/Users/ada"), category, path);
}

}  // namespace

TEST(UninstallPlaces, AreThoseThatPlansNameThingsOf) {
    for (const char* path :
         {"/Users/ada/Library/Application Support/Foo", "/Users/ada/Library/Caches/org.example.Foo",
          "/Users/ada/Library/Logs/Foo", "/Users/ada/Library/Preferences/org.example.Foo.plist",
          "/Users/ada/Library/Preferences/ByHost/org.example.Foo.1.plist", "/Users/ada/Library/Containers/Foo",
          "/Users/ada/Library/Group Containers/Foo", "/Users/ada/Library/HTTPStorages/Foo",
          "/Users/ada/Library/WebKit/Foo", "/Users/ada/Library/Saved Application State/Foo.savedState",
          "/Users/ada/Library/LaunchAgents/Foo.plist", "/Users/ada/.foo", "/Users/ada/.foorc",
          "/Users/ada/Library/Application Support/Tarvik/InstallerSessions/20261115_174543",
          "/Library/LaunchDaemons/Foo.plist", "/Library/LaunchAgents/Foo.plist", "/Library/Application Support/Foo",
          "/Library/PrivilegedHelperTools/Foo"})
        EXPECT_TRUE(isPlace(path)) << path;
}

TEST(UninstallPlaces, AreNotWhatEveryProgramHasItsThingsIn) {
    for (const char* path :
         {"/Users/ada/.ssh", "/Users/ada/.config", "/Users/ada/.local", "/Users/ada/.Trash", "/Users/ada/.TarvikTrash",
          "/Users/ada/Library/Preferences/ByHost", "/Users/ada/Library/Application Support"})
        EXPECT_FALSE(isPlace(path)) << path;
}

TEST(UninstallPlaces, AreNotWhatThisProgramKeeps) {
    using enum UninstallCategory;
    const fs::path own = "/Users/ada/Library/Application Support/Tarvik";
    for (const char* below : {"", "UninstallSessions", "InstallerSessions", "InstallerSessions/1/session.json"})
        EXPECT_FALSE(isPlace(below[0] ? own / below : own)) << below;
    EXPECT_FALSE(isPlace(own / "UninstallSessions/Foo.app", executable));
    EXPECT_FALSE(isPlace(own / "InstallerSessions/Foo.app", executable));
}

TEST(UninstallPlaces, AreNoPathWithANul) {
    const std::string nul(1, '\0');
    EXPECT_FALSE(isPlace("/Users/ada/.config/evil.desktop" + nul + ".app", UninstallCategory::executable));
    EXPECT_FALSE(isPlace("/Users/ada/Library/Caches/Foo" + nul));
}

TEST(UninstallPlaces, OfApplicationsAreAnywhereButInTheSystem) {
    using enum UninstallCategory;
    for (const char* path : {"/Applications/Foo.app", "/Applications/Suite/Foo.app", "/Users/ada/Applications/Foo.app",
                             "/Volumes/Drive/ExternalTarvik/Apps/Foo.app", "/Users/ada/Downloads/Foo.app"}) {
        EXPECT_TRUE(isPlace(path, executable)) << path;
        EXPECT_FALSE(isPlace(path, caches)) << path;
    }
    for (const char* path : {"/System/Applications/Foo.app", "/Applications/Foo", "/Applications/../etc/Foo.app",
                             "Foo.app", "/Applications/Foo.app/"})
        EXPECT_FALSE(isPlace(path, executable)) << path;
}

}  // namespace tarvik::test
