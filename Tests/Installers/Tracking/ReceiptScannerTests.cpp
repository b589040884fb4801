#include "Installers/Tracking/ReceiptScanner.h"
#include "Platform/Text/Json.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ReceiptScannerTest : public testing::Test {
protected:
    /// What is captured when the tool prints this and ends with this status.
    ReceiptSnapshot captured(const std::string& output, int status = 0) {
        world.host.tools.pkgutil =
            world.tool("pkgutil", "[ \"$*\" = --pkgs ] && printf '" + output + "'\nexit " + std::to_string(status));
        return ReceiptScanner::capture(world.host);
    }

    test::World world;
};

TEST_F(ReceiptScannerTest, TakesEachLineForAPackage) {
    EXPECT_THAT(captured("com.acme.b\\n\\ncom.acme.a\\ncom.acme.b\\n").packageIDs,
                ElementsAre("com.acme.a", "com.acme.b"));
    EXPECT_THAT(captured("com.acme.a").packageIDs, ElementsAre("com.acme.a")) << "the last line needs no end";
}

TEST_F(ReceiptScannerTest, LooksAtNoStatus) {
    EXPECT_THAT(captured("com.acme.a\\n", 3).packageIDs, ElementsAre("com.acme.a"));
}

TEST_F(ReceiptScannerTest, FindsNothingWithoutTheTool) {
    world.host.tools.pkgutil = "/nowhere/pkgutil";
    EXPECT_EQ(ReceiptScanner::capture(world.host), ReceiptSnapshot());
}

TEST_F(ReceiptScannerTest, TellsWhatIsNew) {
    const auto before = captured("b\\na\\n");
    const auto after = captured("c\\nb\\nd\\n");
    EXPECT_THAT(ReceiptScanner::added(before, after), ElementsAre("c", "d"));
    EXPECT_THAT(ReceiptScanner::added({}, after), ElementsAre("b", "c", "d")) << "after a tool that failed at first";
    EXPECT_THAT(ReceiptScanner::added({}, {}), IsEmpty());
}

TEST(ReceiptSnapshot, IsAListInJson) {
    const ReceiptSnapshot snapshot{{"b", "a"}};
    EXPECT_EQ(Json::compact(snapshot), "{\"packageIDs\":[\"a\",\"b\"]}");
    EXPECT_EQ(Json::parsedAs<ReceiptSnapshot>("{\"packageIDs\":[\"b\",\"a\",\"b\"]}"), snapshot);
    for (const auto* text : {"{}", "{\"packageIDs\":\"a\"}", "{\"packageIDs\":[1]}"})
        EXPECT_EQ(Json::parsedAs<ReceiptSnapshot>(text), std::nullopt) << text;
}

}  // namespace
}  // namespace tarvik
