#include "Installers/Options/InstallerOptionCheck.h"
#include "Installers/Options/InstallerOptionPlaces.h"
#include "Support/FailureOf.h"
#include "Support/HostOf.h"

#include <gtest/gtest.h>

namespace tarvik {
namespace {

using namespace test;

std::string verdictOn(const std::string& rootName, const fs::path& linkRoot) {
    return failureOf([&] {
        InstallerOptionCheck::requireSafe(
            {.id = "mine", .externalRootName = rootName, .applicationLinkRoot = linkRoot});
    });
}

TEST(InstallerOptionCheck, LetsNamesBelowTheDriveAndAbsoluteFoldersPass) {
    for (const char* name : {"ExternalTarvik", "My Tools", "Tools/2026", "..Tools", "a..b", "\xC3\x9C"})
        EXPECT_EQ(verdictOn(name, "/Applications"), "done") << name;
    for (const char* root : {"/Applications", "/Applications/", "/Applications/External Tools", "/Users/ada/..Apps"})
        EXPECT_EQ(verdictOn("ExternalTarvik", root), "done") << root;
}

TEST(InstallerOptionCheck, RefusesWhatCouldLieElsewhereOnADrive) {
    for (const std::string& name :
         {std::string(), std::string("."), std::string(".."), std::string("/"), std::string("/Applications"),
          std::string("../Other"), std::string("a/../.."), std::string("a/.."), std::string("a//b"), std::string("a/"),
          std::string("./a"), std::string("a\0b", 3), std::string("a\tb"), std::string("a\nb"),
          std::string("a\xE2\x80\xA8"), std::string(5000, 'x')})
        EXPECT_EQ(verdictOn(name, "/Applications"),
                  "The option \"mine\" cannot be used: its externalRootName must be the name of a folder on the drive.")
            << name;
}

TEST(InstallerOptionCheck, RefusesWhatIsNoPlaceForLaunchers) {
    for (const std::string& root :
         {std::string(), std::string("/"), std::string("//"), std::string("Applications"),
          std::string("~/Applications"), std::string("../Applications"), std::string("/Applications/.."),
          std::string("/Applications/../etc"), std::string("/./Applications"), std::string("//Applications"),
          std::string("/Applications//"), std::string("/a\0b", 4), std::string("/a\nb")})
        EXPECT_EQ(verdictOn("ExternalTarvik", root),
                  "The option \"mine\" cannot be used: its applicationLinkRoot must be the absolute path of a folder, "
                  "without \"..\".")
            << root;
}

TEST(InstallerOptionPlaces, AreOnTheDriveAndOnTheMachine) {
    const InstallerOption option = {.id = "mine", .externalRootName = "Tools", .applicationLinkRoot = "/Applications"};
    EXPECT_EQ(InstallerOptionPlaces::applicationsOn("/Volumes/Backup", option), "/Volumes/Backup/Tools/Apps");
    EXPECT_EQ(InstallerOptionPlaces::launchers(hostOf("/", "/Users/ada"), option), "/Applications");
    EXPECT_EQ(InstallerOptionPlaces::launchers(hostOf("/machine", "/machine/Users/ada"), option),
              "/machine/Applications");
}

}  // namespace
}  // namespace tarvik
