#include "Uninstall/UninstallPlanner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {
namespace {

TEST(UninstallPlanner, NamesWhatIsInAFolderBeforeTheFolder) {
    const InstallerSession session = {.id = {},
                                      .sourcePath = {},
                                      .optionID = {},
                                      .createdAt = {},
                                      .actions = {},
                                      .changedPaths = {"/a/b", "/a", "/a b", "/a/b/c", "/Z"},
                                      .newReceipts = {"com.b", "com.a"},
                                      .targetDrivePath = {},
                                      .pendingExternalizeApps = {}};
    EXPECT_THAT(UninstallPlanner::plan(session),
                testing::ElementsAre("trash\t/a/b/c", "trash\t/a/b", "trash\t/a b", "trash\t/a", "trash\t/Z",
                                     "forget-receipt\tcom.b", "forget-receipt\tcom.a"));
}

TEST(UninstallPlanner, HasNothingToSayOfARunThatChangedNothing) {
    EXPECT_THAT(UninstallPlanner::plan({}), testing::IsEmpty());
}

}  // namespace
}  // namespace tarvik
