#include "Platform/Files/ExistingPaths.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

namespace tarvik {
namespace {

TEST(ExistingPaths, KeepsInOrderWhatIsThere) {
    const test::TemporaryFolder folder;
    test::makeFile(folder / "file");
    test::makeFolder(folder / "a folder");
    const std::vector<fs::path> paths = {folder / "missing", folder / "file", folder / "a folder",
                                         folder / "file/below", folder / "file"};
    EXPECT_EQ(ExistingPaths::filter(paths),
              (std::vector<fs::path>{folder / "file", folder / "a folder", folder / "file"}));
    EXPECT_TRUE(ExistingPaths::filter({}).empty());
}

TEST(ExistingPaths, FollowsLinksAndDropsDanglingOnes) {
    const test::TemporaryFolder folder;
    test::makeFile(folder / "file");
    test::makeLink(folder / "good", "file");
    test::makeLink(folder / "through", "good");
    test::makeLink(folder / "dangling", "missing");
    test::makeLink(folder / "loop", "loop");
    EXPECT_EQ(ExistingPaths::filter({folder / "dangling", folder / "good", folder / "loop", folder / "through"}),
              (std::vector<fs::path>{folder / "good", folder / "through"}));
}

}  // namespace
}  // namespace tarvik
