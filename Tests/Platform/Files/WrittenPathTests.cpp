#include "Platform/Basics/Failure.h"
#include "Platform/Files/WrittenPath.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace tarvik::test {

namespace {

/// A home with a link to a folder elsewhere.
class WrittenPathTest : public testing::Test {
protected:
    WrittenPathTest() {
        makeFolder(folder / "home/Music");
        makeFolder(folder / "elsewhere/deep/inside");
        makeLink(folder / "home/link", folder / "elsewhere/deep");
        makeLink(folder / "home/nowhere", folder / "gone");
    }

    std::string meaningOf(const fs::path& written) const {
        try {
            return tarvik::WrittenPath::meant(written);
        } catch (const Failure& failure) {
            return failure.description();
        }
    }
    std::string twoMeanings(const fs::path& written, const char* real, const char* plain) const {
        return "With \"..\" behind a symlink, " + written.native() + " may mean " + (folder / real).native() + " or " +
               (folder / plain).native() + ". Name the one that is meant.";
    }

    TemporaryFolder folder;
};

}  // namespace

TEST_F(WrittenPathTest, IsStandardized) {
    const fs::path music = folder / "home/Music";
    for (const char* written :
         {"home/Music", "home/Music/", "home//./Music/.", "home/Music/../Music", "home/../home/Music"})
        EXPECT_EQ(meaningOf(folder / written), music) << written;
    EXPECT_EQ(meaningOf(folder / "home/link"), folder / "home/link");
    EXPECT_EQ(meaningOf(folder / "not/there"), folder / "not/there");
    EXPECT_EQ(meaningOf(""), "");
    EXPECT_EQ(meaningOf("/.."), "/");
    EXPECT_EQ(meaningOf("/../.."), "/");
}

TEST_F(WrittenPathTest, MayNotMeanTwoPlaces) {
    for (const auto& [written, real, plain] :
         std::vector<std::array<const char*, 3>>{{"home/link/../Music", "elsewhere/Music", "home/Music"},
                                                 {"home/link/..", "elsewhere", "home"},
                                                 {"home/link/../", "elsewhere", "home"},
                                                 {"home/link/inside/../../a/b", "elsewhere/a/b", "home/a/b"}})
        EXPECT_EQ(meaningOf(folder / written), twoMeanings(folder / written, real, plain)) << written;
}

TEST_F(WrittenPathTest, GoesThroughLinksThatChangeNothing) {
    EXPECT_EQ(meaningOf(folder / "home/link/inside/../inside"), folder / "home/link/inside");
    makeLink(folder / "home/beside", folder / "home/Music");
    EXPECT_EQ(meaningOf(folder / "home/beside/../Music"), folder / "home/Music");
    EXPECT_EQ(meaningOf(folder / "home/link/../../x"), folder / "x") << "both ways end in the same folder";
}

TEST_F(WrittenPathTest, LeadsNowhereBehindALinkThatDoes) {
    const fs::path written = folder / "home/nowhere/../Music";
    EXPECT_EQ(meaningOf(written), "Nothing stands at " + written.native() + ".");
}

TEST_F(WrittenPathTest, IsTakenByItsTextWhereNothingIs) {
    EXPECT_EQ(meaningOf(folder / "home/gone/../Music"), folder / "home/Music");
    EXPECT_EQ(meaningOf(folder / "gone/a/../../home"), folder / "home");
    const fs::path written = folder / "home/link/gone/../../x";
    EXPECT_EQ(meaningOf(written), twoMeanings(written, "elsewhere/x", "home/x"));
}

TEST_F(WrittenPathTest, IsTakenFromTheWorkingDirectory) {
    const fs::path before = fs::current_path();
    fs::current_path(folder / "elsewhere");
    EXPECT_EQ(meaningOf("../home/Music"), folder / "home/Music");
    EXPECT_EQ(meaningOf("../home/link/../x"), twoMeanings("../home/link/../x", "elsewhere/x", "home/x"));
    fs::current_path(folder / "home/link");
    EXPECT_EQ(meaningOf("../x"), folder / "elsewhere/x") << "as every program takes it";
    fs::current_path(before);
}

}  // namespace tarvik::test
