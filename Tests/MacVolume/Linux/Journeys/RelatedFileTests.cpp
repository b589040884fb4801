// What belongs to an application is found on a disk that folds names, and shown as it is spelled there.
#include "Platform/Files/Files.h"
#include "Support/Bundles.h"
#include "Support/MacVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"
#include "Uninstall/RelatedFileScanner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace tarvik::test {
namespace {

using Habit = MacVolume::Habit;
using testing::ElementsAre;

class RelatedFilesOnAFoldingDisk : public testing::Test {
protected:
    void SetUp() override {
        TARVIK_NEEDS_MAC_VOLUMES();
        disk.emplace(folder.path(), std::initializer_list<Habit>{Habit::foldsNames, Habit::decomposesNames});
        host = Host::rootedAt(folder.path(), folder / "Users/ada");
        host.tools = {};
        makeBundle(app.bundlePath);
    }

    std::vector<std::string> found() const {
        std::vector<std::string> paths;
        for (const auto& candidate : RelatedFileScanner::scan(host, app))
            paths.push_back(candidate.path.lexically_relative(folder.path()));
        return paths;
    }

    const TemporaryFolder folder;
    std::optional<MacVolume> disk;
    Host host;
    AppRecord app = {.bundlePath = folder / "Applications/Caf\u00E9.app",
                     .displayName = "Caf\u00E9",
                     .bundleIdentifier = "com.acme.Cafe",
                     .executableName = "Cafe"};
};

TEST_F(RelatedFilesOnAFoldingDisk, AreShownInTheSpellingOfTheDisk) {
    makeFile(host.home / "Library/Caches/CAF\u00C9/data");
    makeFile(host.home / "Library/Logs/COM.acme.cafe/data");
    makeFile(host.home / "Library/Preferences/com.acme.cafe.plist");
    makeFile(host.home / ".CafeRC");
    EXPECT_THAT(found(), ElementsAre("Applications/Caf\u00E9.app", "Users/ada/Library/Caches/CAFE\u0301",
                                     "Users/ada/Library/Logs/COM.acme.cafe",
                                     "Users/ada/Library/Preferences/com.acme.cafe.plist", "Users/ada/.CafeRC"));
}

TEST_F(RelatedFilesOnAFoldingDisk, AreFoundOnceUnderTwoSpellings) {
    app.displayName = "COM.ACME.CAFE";
    makeFile(host.home / "Library/Caches/com.acme.cafe/data");
    EXPECT_THAT(found(), ElementsAre("Applications/Caf\u00E9.app", "Users/ada/Library/Caches/com.acme.cafe"));
}

TEST_F(RelatedFilesOnAFoldingDisk, AreNeverTheTrashOrWhatTheSessionReads) {
    makeFile(host.home / ".Trash/old");
    makeFile(host.home / ".SSH/id");
    for (const char* slug : {"trash", "Trash", "ssh", "SSH"}) {
        app.executableName = slug;
        EXPECT_THAT(found(), ElementsAre("Applications/Caf\u00E9.app")) << slug;
    }
}

TEST_F(RelatedFilesOnAFoldingDisk, AreNoApplicationOfTheSystem) {
    makeBundle(folder / "System/Applications/Mail.app");
    app.externalTargetPath = folder / "SYSTEM/applications/Mail.app";
    EXPECT_THAT(found(), ElementsAre("Applications/Caf\u00E9.app"));
}

}  // namespace
}  // namespace tarvik::test
