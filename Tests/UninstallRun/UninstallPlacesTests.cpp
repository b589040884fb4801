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
