#include "Platform/Machine/AppStorageNames.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace tarvik {
namespace {

Host hostOf(const fs::path& home) {
    Host host;
    host.home = home;
    return host;
}

TEST(AppStorageNames, AreWhatDrivesInUseCarry) {
    EXPECT_EQ(AppStorageNames::externalRoot, "ExternalTarvik");
    EXPECT_EQ(AppStorageNames::legacyExternalRoots, (std::array<std::string_view, 1>{"Tarvik"}));
    EXPECT_EQ(AppStorageNames::apps, "Apps");
    EXPECT_EQ(AppStorageNames::data, "Data");
    EXPECT_EQ(AppStorageNames::folders, "Folders");
    EXPECT_EQ(AppStorageNames::backupsRoot, "TarvikBackups");
    EXPECT_EQ(AppStorageNames::installerSessions, "InstallerSessions");
    EXPECT_EQ(AppStorageNames::installerOptions, "InstallerOptions");
    EXPECT_EQ(AppStorageNames::installerCache, "InstallerCache");
    EXPECT_EQ(AppStorageNames::uninstallSessions, "UninstallSessions");
}

TEST(AppStorageNames, StandBelowADrivesMountPath) {
    const fs::path drive = "/Volumes/Two Words";
    EXPECT_EQ(AppStorageNames::externalRootOn(drive), "/Volumes/Two Words/ExternalTarvik");
    EXPECT_EQ(AppStorageNames::appsRootOn(drive), "/Volumes/Two Words/ExternalTarvik/Apps");
    EXPECT_EQ(AppStorageNames::dataRootOn(drive), "/Volumes/Two Words/ExternalTarvik/Data");
    EXPECT_EQ(AppStorageNames::foldersRootOn(drive), "/Volumes/Two Words/ExternalTarvik/Folders");
    EXPECT_EQ(AppStorageNames::backupsRootOn(drive), "/Volumes/Two Words/TarvikBackups");
    EXPECT_EQ(AppStorageNames::appsRootOn("/"), "/ExternalTarvik/Apps");
}

TEST(AppStorageNames, StandInTheUsersLibrary) {
    const Host host = hostOf("/Users/anna");
    EXPECT_EQ(AppStorageNames::supportRoot(host), "/Users/anna/Library/Application Support/Tarvik");
    EXPECT_EQ(AppStorageNames::sessionRoot(host), "/Users/anna/Library/Application Support/Tarvik/InstallerSessions");
    EXPECT_EQ(AppStorageNames::userInstallerOptionsRoot(host),
              "/Users/anna/Library/Application Support/Tarvik/InstallerOptions");
    EXPECT_EQ(AppStorageNames::uninstallSessionRoot(host),
              "/Users/anna/Library/Application Support/Tarvik/UninstallSessions");
}

TEST(AppStorageNames, MakeNoFolder) {
    const test::TemporaryFolder folder;
    const Host host = hostOf(folder.path());
    AppStorageNames::uninstallSessionRoot(host);
    AppStorageNames::sessionRoot(host);
    AppStorageNames::appsRootOn(folder.path());
    EXPECT_TRUE(fs::is_empty(folder.path()));
}

}  // namespace
}  // namespace tarvik
