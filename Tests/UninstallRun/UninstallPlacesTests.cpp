#include "Support/HostOf.h"
#include "UninstallRun/UninstallPlaces.h"

#include <gtest/gtest.h>

namespace tarvik::test {

namespace {

bool isPlace(const fs::path& path, UninstallCategory category = UninstallCategory::caches) {
    AppUninstallSession session;
    session.appPath = "/Applications/Foo.app";
    session.appName = "Foo";
    session.bundleIdentifier = "org.example.Foo";
    return UninstallPlaces::isOne(hostOf("/", "/Users/ada"), session, category, path);
}

}  // namespace

TEST(UninstallPlaces, AreThoseThatPlansNameThingsOf) {
    using enum UninstallCategory;
    const std::pair<const char*, UninstallCategory> places[] = {
        {"/Users/ada/Library/Application Support/Foo", applicationSupport},
        {"/Users/ada/Library/Application Support/foo", applicationSupport},
        {"/Users/ada/Library/Caches/org.example.Foo", caches},
        {"/Users/ada/Library/Caches/foo-cli-nodejs", caches},
        {"/Users/ada/Library/Logs/Foo", logs},
        {"/Users/ada/Library/Preferences/org.example.Foo.plist", preferences},
        {"/Users/ada/Library/Preferences/ByHost/org.example.Foo.1.plist", preferences},
        {"/Users/ada/Library/Containers/org.example.Foo", containers},
        {"/Users/ada/Library/Group Containers/org.example.Foo", groupContainers},
        {"/Users/ada/Library/HTTPStorages/org.example.Foo", httpStorages},
        {"/Users/ada/Library/WebKit/org.example.Foo", webKit},
        {"/Users/ada/Library/Saved Application State/Foo.savedState", savedAppState},
        {"/Users/ada/Library/LaunchAgents/org.example.Foo.plist", launchAgents},
        {"/Users/ada/.foo", applicationSupport},
        {"/Users/ada/.foorc", applicationSupport},
        {"/Users/ada/Library/Application Support/Tarvik/InstallerSessions/20261115_174543", installerSession},
        {"/Library/LaunchDaemons/org.example.Foo.plist", launchDaemons},
        {"/Library/LaunchAgents/org.example.Foo.plist", launchAgents},
        {"/Library/Application Support/org.example.Foo", applicationSupport},
        {"/Library/PrivilegedHelperTools/org.example.Foo", launchDaemons}};
    for (const auto& [path, category] : places) EXPECT_TRUE(isPlace(path, category)) << path;
}

TEST(UninstallPlaces, AreNoneOfAnotherApplicationOrCategory) {
    using enum UninstallCategory;
    const std::pair<const char*, UninstallCategory> others[] = {
        {"/Users/ada/Library/LaunchAgents/evil.plist", caches},
        {"/Users/ada/Library/LaunchAgents/com.other.plist", launchAgents},
        {"/Users/ada/Library/LaunchAgents/org.example.Foo.plist", caches},
        {"/Users/ada/Library/Caches/Bar", caches},
        {"/Users/ada/Library/Caches/-cli", caches},
        {"/Users/ada/.bashrc", caches},
        {"/Users/ada/Library/Caches/Foo", receipts},
        {"/Users/ada/Library/Preferences/ByHost/org.example.Bar.plist", preferences},
        {"/Users/ada/Library/Application Support/Tarvik/InstallerSessions/1", caches}};
    for (const auto& [path, category] : others) EXPECT_FALSE(isPlace(path, category)) << path;
}

TEST(UninstallPlaces, AreNotWhatEveryProgramHasItsThingsIn) {
    for (const char* path :
         {"/Users/ada/.ssh", "/Users/ada/.config", "/Users/ada/.local", "/Users/ada/.Trash", "/Users/ada/.TarvikTrash",
          "/Users/ada/Library/Preferences/ByHost", "/Users/ada/Library/Application Support"})
        EXPECT_FALSE(isPlace(path, UninstallCategory::applicationSupport)) << path;
}

TEST(UninstallPlaces, AreNotWhatThisProgramKeeps) {
    using enum UninstallCategory;
    const fs::path own = "/Users/ada/Library/Application Support/Tarvik";
    for (const char* below : {"", "UninstallSessions", "InstallerSessions", "InstallerSessions/1/session.json"})
        EXPECT_FALSE(isPlace(below[0] ? own / below : own, applicationSupport)) << below;
    EXPECT_FALSE(isPlace(own / "InstallerSessions/1/session.json", installerSession));
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
