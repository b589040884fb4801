#include "Installers/Inspection/ContainedItemScanner.h"
#include "Platform/Storage/SizingService.h"
#include "Support/DeepTree.h"
#include "Support/HostOf.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>

namespace tarvik {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> foundBelow(const fs::path& root) {
    std::vector<std::string> found;
    for (const InstallableItem& item : ContainedItemScanner::scan(hostOf("/", root), root))
        found.push_back(item.path.lexically_relative(root).native());
    return found;
}

TEST(ContainedItemScanner, ListsApplicationsAndPackagesAlone) {
    const TemporaryFolder folder;
    for (const char* name : {"Editor.app/Contents/Info.plist", "Setup.PKG", "Suite.mpkg/Contents/a", "inner.dmg",
                             "inner.zip", "run.sh", "README"})
        makeFile(folder / name, "#!/bin/sh\n");
    EXPECT_THAT(foundBelow(folder.path()), ElementsAre("Editor.app", "Setup.PKG", "Suite.mpkg"));
}

TEST(ContainedItemScanner, TellsAllOfAnItem) {
    const TemporaryFolder folder;
    makeFileOfSize(folder / "Extras" / "Tool.pkg", 10'000);
    const Host host = hostOf("/", folder.path());
    const auto items = ContainedItemScanner::scan(host, folder.path());
    ASSERT_EQ(items.size(), 1U);
    const fs::path path = folder / "Extras" / "Tool.pkg";
    EXPECT_EQ(items.front(), (InstallableItem{.id = path.native(),
                                              .kind = InstallerKind::pkg,
                                              .path = path,
                                              .label = "Tool.pkg",
                                              .sizeBytes = SizingService::size(host, path)}));
    EXPECT_GE(items.front().sizeBytes, 10'000);
}

TEST(ContainedItemScanner, LooksIntoNothingThatItLists) {
    const TemporaryFolder folder;
    makeFile(folder / "Editor.app" / "Contents" / "Helper.app" / "Contents" / "Info.plist");
    makeFile(folder / "Suite.mpkg" / "Contents" / "Packages" / "One.pkg");
    makeFile(folder / "More" / "Inner.app" / "Contents" / "x.pkg");
    EXPECT_THAT(foundBelow(folder.path()), ElementsAre("Editor.app", "More/Inner.app", "Suite.mpkg"));
}

TEST(ContainedItemScanner, SortsByThePathAsText) {
    const TemporaryFolder folder;
    // A space and a full stop stand before the slash, "0" behind it.
    for (const char* name : {"a/z.pkg", "a.pkg", "a b/y.pkg", "a0.pkg", "B.pkg"}) makeFile(folder / name);
    EXPECT_THAT(foundBelow(folder.path()), ElementsAre("B.pkg", "a b/y.pkg", "a.pkg", "a/z.pkg", "a0.pkg"));
}

TEST(ContainedItemScanner, PassesHiddenItemsOver) {
    const TemporaryFolder folder;
    makeFile(folder / ".Hidden.app" / "x");
    makeFile(folder / ".background" / "Tool.pkg");
    makeFile(folder / "__MACOSX" / "._Tool.pkg");
    EXPECT_THAT(foundBelow(folder.path()), IsEmpty());
}

TEST(ContainedItemScanner, FollowsNoLinkIntoAFolderAndListsLinksThatBearSuchNames) {
    const TemporaryFolder folder;
    makeFile(folder / "elsewhere" / "Real.app" / "x");
    const fs::path root = folder / "image";
    makeFolder(root);
    makeLink(root / "Applications", folder / "elsewhere");
    makeLink(root / "Again", root);
    makeLink(root / "Real.app", folder / "elsewhere" / "Real.app");
    EXPECT_THAT(foundBelow(root), ElementsAre("Real.app"));
}

TEST(ContainedItemScanner, OpensNoFile) {
    const TemporaryFolder folder;
    makePipe(folder / "pipe");
    makeSocket(folder / "socket");
    makeLink(folder / "zero", "/dev/zero");
    // A file that was read since it was changed shows that in its time of access.
    for (const char* name : {"unread", "read"}) {
        makeFile(folder / name, "#!/bin/sh\n");
        const timespec times[2] = {{.tv_sec = 1000, .tv_nsec = 0}, {.tv_sec = 2000, .tv_nsec = 0}};
        ASSERT_EQ(::utimensat(AT_FDCWD, (folder / name).c_str(), times, 0), 0);
    }
    EXPECT_THAT(foundBelow(folder.path()), IsEmpty());
    EXPECT_EQ(statusOf(folder / "unread").st_atime, 1000);
    contentOf(folder / "read");
    if (statusOf(folder / "read").st_atime == 1000) GTEST_SKIP() << "This file system keeps no time of access.";
}

TEST(ContainedItemScanner, LooksAsDeepAsFoldersGo) {
    const TemporaryFolder folder;
    const DeepTree deep(folder / "deep", 300);
    deep.make();
    makeFile(folder / "deep" / "Tool.pkg");
    makeFile(folder / "later" / "Tool.pkg");
    EXPECT_THAT(foundBelow(folder.path()), ElementsAre("deep/Tool.pkg", "later/Tool.pkg"));
}

TEST(ContainedItemScanner, FindsNothingWhereNothingCanBeListed) {
    const TemporaryFolder folder;
    makeFile(folder / "Tool.pkg");
    makeLink(folder / "link", folder.path());
    EXPECT_THAT(foundBelow(folder / "missing"), IsEmpty());
    EXPECT_THAT(foundBelow(folder / "Tool.pkg"), IsEmpty());
    EXPECT_THAT(foundBelow(folder / "link"), IsEmpty());
}

}  // namespace
}  // namespace tarvik
