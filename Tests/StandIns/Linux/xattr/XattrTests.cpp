#include "StandIns/StandInRun.h"
#include "Support/ExtendedAttributes.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace tarvik::test {
namespace {

constexpr const char* quarantine = "com.apple.quarantine";
/// As Linux names it.
constexpr const char* quarantineHere = "user.com.apple.quarantine";

bool isQuarantined(const fs::path& item) {
    try {
        return !attributeOf(item, quarantineHere).empty();
    } catch (const std::runtime_error&) {
        return false;
    }
}

fs::path quarantined(const fs::path& item) {
    setAttribute(item, quarantineHere, "0081;x");
    return item;
}

TEST(Xattr, ClearsATreeAndWhatItsLinksLeadToNot) {
    const TemporaryFolder folder;
    makeFile(folder / "tree/folder/file");
    makeFile(folder / "outside");
    makeLink(folder / "tree/link", folder / "outside");
    makeLink(folder / "tree/dangling", "nowhere");
    const std::vector<fs::path> items = {quarantined(folder / "tree"), quarantined(folder / "tree/folder"),
                                         quarantined(folder / "tree/folder/file")};
    setAttribute(folder / "tree", "user.other", "value");
    quarantined(folder / "outside");
    const auto run = runStandIn("xattr", {"-cr", folder / "tree"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.stderr, "");
    for (const fs::path& item : items) EXPECT_FALSE(isQuarantined(item)) << item;
    EXPECT_THROW(attributeOf(folder / "tree", "user.other"), std::runtime_error);
    EXPECT_TRUE(isQuarantined(folder / "outside"));
}

TEST(Xattr, ClearsOneItemWithoutWhatIsInIt) {
    const TemporaryFolder folder;
    makeFile(folder / "tree/file");
    quarantined(folder / "tree");
    quarantined(folder / "tree/file");
    makeLink(folder / "link", folder / "tree");
    EXPECT_EQ(runStandIn("xattr", {"-c", folder / "link"}).status, 0);
    EXPECT_FALSE(isQuarantined(folder / "tree"));
    EXPECT_TRUE(isQuarantined(folder / "tree/file"));
}

TEST(Xattr, DeletesOneByItsName) {
    const TemporaryFolder folder;
    makeFile(folder / "tree/file");
    quarantined(folder / "tree/file");
    setAttribute(folder / "tree/file", "user.other", "value");
    EXPECT_EQ(runStandIn("xattr", {"-r", "-d", quarantine, folder / "tree"}).status, 0);
    EXPECT_FALSE(isQuarantined(folder / "tree/file"));
    EXPECT_EQ(attributeOf(folder / "tree/file", "user.other"), "value");
    const auto run = runStandIn("xattr", {"-d", quarantine, folder / "tree/file"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.stderr, "xattr: " + (folder / "tree/file").native() + ": No such xattr: " + quarantine + "\n");
}

TEST(Xattr, GoesOnAfterWhatIsMissing) {
    const TemporaryFolder folder;
    makeFile(folder / "file");
    quarantined(folder / "file");
    const auto run = runStandIn("xattr", {"-c", folder / "none", folder / "file"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.stderr, "xattr: " + (folder / "none").native() + ": No such file\n");
    EXPECT_FALSE(isQuarantined(folder / "file"));
}

TEST(Xattr, ExplainsItsUsage) {
    for (const std::vector<std::string>& words : {std::vector<std::string>{},
                                                  {"-c"},
                                                  {"-z", "file"},
                                                  {"-cd", "file"},
                                                  {"-d", "name"},
                                                  {"file"},
                                                  {"-r", "file"}}) {
        const auto run = runStandIn("xattr", words);
        EXPECT_EQ(run.status, 64);
        EXPECT_EQ(run.stderr.rfind("usage: xattr ", 0), 0U);
    }
}

}  // namespace
}  // namespace tarvik::test
