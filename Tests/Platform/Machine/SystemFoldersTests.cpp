#include "Platform/Machine/SystemFolders.h"
#include "Support/HostOf.h"

#include <gtest/gtest.h>

namespace tarvik {
namespace {

using test::hostOf;

const Host thisMachine = hostOf("/", "/Users/anna");
const Host practice = hostOf("/practice", "/practice/Users/anna");

TEST(SystemFolders, AreTheLiteralPathsOnARealMachine) {
    EXPECT_EQ(SystemFolders::applications(thisMachine), "/Applications");
    EXPECT_EQ(SystemFolders::library(thisMachine), "/Library");
    EXPECT_EQ(SystemFolders::system(thisMachine), "/System");
    EXPECT_EQ(SystemFolders::users(thisMachine), "/Users");
    EXPECT_EQ(SystemFolders::volumes(thisMachine), "/Volumes");
    EXPECT_EQ(SystemFolders::below(thisMachine, "/"), "/");
}

TEST(SystemFolders, StandBelowTheHostsRoot) {
    EXPECT_EQ(SystemFolders::applications(practice), "/practice/Applications");
    EXPECT_EQ(SystemFolders::volumes(practice), "/practice/Volumes");
    EXPECT_EQ(SystemFolders::below(practice, "/Library/Audio"), "/practice/Library/Audio");
    EXPECT_EQ(SystemFolders::below(practice, "/"), "/practice");
}

TEST(SystemFolders, StayWhereTheSystemLooksForThem) {
    for (const char* folder : {"/",
                               "/Applications",
                               "/Library",
                               "/System",
                               "/Users",
                               "/Volumes",
                               "/private",
                               "/usr",
                               "/bin",
                               "/sbin",
                               "/etc",
                               "/var",
                               "/tmp",
                               "/opt",
                               "/cores",
                               "/dev",
                               "/home",
                               "/boot",
                               "/efi",
                               "/lib",
                               "/lib32",
                               "/lib64",
                               "/libx32",
                               "/media",
                               "/mnt",
                               "/proc",
                               "/root",
                               "/run",
                               "/snap",
                               "/srv",
                               "/sys",
                               "/nix",
                               "/private/etc",
                               "/private/var",
                               "/usr/local",
                               "/run/media",
                               "/private/tmp",
                               "/var/tmp",
                               "/Users/anna",
                               "/Users/anna/Library",
                               "/Users/anna/Applications",
                               "/Applications/Utilities"}) {
        EXPECT_TRUE(SystemFolders::isImmovable(thisMachine, folder)) << folder;
    }
}

TEST(SystemFolders, StayWithAllThatIsInThemWhereTheSystemNeedsIt) {
    for (const char* folder : {"/System/Library/Fonts",
                               "/bin/folder",
                               "/sbin/folder",
                               "/usr/share/doc",
                               "/dev/shm",
                               "/etc/ssl",
                               "/private/etc/ssl",
                               "/proc/1",
                               "/sys/class",
                               "/boot/grub",
                               "/efi/EFI",
                               "/lib/modules",
                               "/lib64/folder",
                               "/run/user/1000",
                               "/var/db/dslocal",
                               "/var/lib/dpkg",
                               "/private/var/db/dslocal",
                               "/private/var/folders/zz",
                               "/nix/store",
                               "/snap/core",
                               "/Library/Extensions/Driver.kext",
                               "/Library/Keychains/folder"}) {
        EXPECT_TRUE(SystemFolders::isImmovable(thisMachine, folder)) << folder;
    }
}

TEST(SystemFolders, OfAHomeStayWhereProgramsLookForThem) {
    for (const char* folder :
         {"Library/Application Support", "Library/Application Support/Tarvik/InstallerSessions", "Library/Preferences",
          "Library/Preferences/ByHost", "Library/Containers", "Library/Containers/com.acme.editor/Data",
          "Library/Group Containers/acme", "Library/Application Scripts/acme", "Library/Keychains",
          "Library/Mobile Documents/com~apple~CloudDocs", "Library/CloudStorage/Acme", "Library/LaunchAgents", ".Trash",
          ".config", ".local", ".local/share", ".ssh"}) {
        EXPECT_TRUE(SystemFolders::isImmovable(thisMachine, thisMachine.home / folder)) << folder;
        EXPECT_TRUE(SystemFolders::isImmovable(practice, practice.home / folder)) << folder;
        EXPECT_FALSE(SystemFolders::isImmovable(thisMachine, thisMachine.home / "Old" / folder)) << folder;
    }
    for (const char* folder :
         {"Library/Application Support/Claude", "Library/Application Support/Tarviks", "Library/Preferences/Acme",
          "Library/Containers2", "Library/Caches/Acme", "Library/Developer", ".config/acme", ".local/share/acme",
          ".local/bin", ".Trash/Old", ".cache", ".acme", "Movies"})
        EXPECT_FALSE(SystemFolders::isImmovable(thisMachine, thisMachine.home / folder)) << folder;
}

TEST(SystemFolders, StayWhereADriveIsMounted) {
    for (const char* folder : {"/Volumes/Backup", "/media/anna", "/media/anna/Backup", "/run/media/anna/Backup"})
        EXPECT_TRUE(SystemFolders::isImmovable(thisMachine, folder)) << folder;
}

TEST(SystemFolders, StayWhereAnotherUserLives) {
    EXPECT_TRUE(SystemFolders::isImmovable(thisMachine, "/Users/ben"));
    EXPECT_TRUE(SystemFolders::isImmovable(thisMachine, "/home/ben"));
}

TEST(SystemFolders, HoldWhatCanBeMoved) {
    for (const char* folder : {"/Applications/Editor.app",
                               "/Applications/Utilities/Tool.app",
                               "/Library/Developer",
                               "/Library/Application Support/Samples",
                               "/Library/Audio/Plug-Ins/VST3/Synth.vst3",
                               "/Users/anna/Documents",
                               "/Users/anna/Library/Caches",
                               "/Users/anna/Applications/Game.app",
                               "/Users/ben/Movies",
                               "/Volumes/Backup/Old",
                               "/usr/local/lib",
                               "/opt/samples",
                               "/srv/files",
                               "/media/anna/Backup/Old",
                               "/run/media/anna/Backup/Old",
                               "/mnt/disk",
                               "/tmp/folder",
                               "/var/tmp/folder",
                               "/data",
                               "/Systems",
                               "/library"}) {
        EXPECT_FALSE(SystemFolders::isImmovable(thisMachine, folder)) << folder;
    }
}

TEST(SystemFolders, OfADataVolumeAreJudgedByTheirUsualPaths) {
    EXPECT_FALSE(SystemFolders::isImmovable(thisMachine, "/System/Volumes/Data/Users/Shared/Samples"));
    EXPECT_FALSE(SystemFolders::isImmovable(practice, "/practice/System/Volumes/Data/opt/acme"));
    EXPECT_TRUE(SystemFolders::isImmovable(thisMachine, "/System/Volumes/Data/Applications"));
    EXPECT_TRUE(SystemFolders::isImmovable(thisMachine, "/System/Volumes/Data/Users/other"));
    EXPECT_TRUE(SystemFolders::isImmovable(thisMachine, "/System/Volumes/Data"));
    EXPECT_TRUE(SystemFolders::isImmovable(thisMachine, "/System/Volumes/Preboot/x"));
}

TEST(SystemFolders, AreJudgedBelowTheHostsRoot) {
    EXPECT_TRUE(SystemFolders::isImmovable(practice, "/practice"));
    EXPECT_TRUE(SystemFolders::isImmovable(practice, "/practice/Applications"));
    EXPECT_TRUE(SystemFolders::isImmovable(practice, "/practice/System/Library"));
    EXPECT_TRUE(SystemFolders::isImmovable(practice, "/practice/Volumes/Backup"));
    EXPECT_TRUE(SystemFolders::isImmovable(practice, "/practice/Users/anna/Library"));
    EXPECT_FALSE(SystemFolders::isImmovable(practice, "/practice/Applications/Editor.app"));
    EXPECT_FALSE(SystemFolders::isImmovable(practice, "/practice/Users/anna/Music"));
}

TEST(SystemFolders, OfTheRunningMachineStayForEveryHost) {
    EXPECT_TRUE(SystemFolders::isImmovable(practice, "/usr/lib"));
    EXPECT_TRUE(SystemFolders::isImmovable(practice, "/Applications"));
    EXPECT_FALSE(SystemFolders::isImmovable(practice, "/data/music"));
}

TEST(SystemFolders, StayAboveTheHomeAndTheRoot) {
    EXPECT_TRUE(SystemFolders::isImmovable(practice, "/practice"));
    EXPECT_TRUE(SystemFolders::isImmovable(hostOf("/data/disk", "/home/anna"), "/data"));
    EXPECT_TRUE(SystemFolders::isImmovable(hostOf("/", "/data/people/anna"), "/data/people"));
    EXPECT_FALSE(SystemFolders::isImmovable(hostOf("/", "/data/people/anna"), "/data/people/anna's"));
}

TEST(SystemFolders, LeaveTheHomeToItsUserWhereverItIs) {
    const Host service = hostOf("/", "/var/lib/builder");
    EXPECT_TRUE(SystemFolders::isImmovable(service, "/var/lib/builder"));
    EXPECT_FALSE(SystemFolders::isImmovable(service, "/var/lib/builder/cache"));
    EXPECT_FALSE(SystemFolders::isImmovable(hostOf("/", "/root"), "/root/music"));
}

TEST(SystemFolders, StayAlsoWhenTheHomeIsTheRoot) {
    EXPECT_TRUE(SystemFolders::isImmovable(hostOf("/", "/"), "/usr/lib"));
    EXPECT_FALSE(SystemFolders::isImmovable(hostOf("/", "/"), "/data"));
}

TEST(SystemFolders, OfARootUnderASystemFolderAreStillItsOwn) {
    const Host host = hostOf("/var/lib/practice", "/var/lib/practice/Users/anna");
    EXPECT_FALSE(SystemFolders::isImmovable(host, "/var/lib/practice/Applications/Editor.app"));
    EXPECT_TRUE(SystemFolders::isImmovable(host, "/var/lib/practice/Applications"));
    EXPECT_TRUE(SystemFolders::isImmovable(host, "/var/lib/other"));
}

}  // namespace
}  // namespace tarvik
