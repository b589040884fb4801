#include "Uninstall/PackageReceipts.h"
#include "Uninstall/ScanWorld.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Receipts : public testing::Test {
protected:
    std::vector<std::string> named() const { return PackageReceipts::named(world.host, "com.acme.editor"); }

    test::ScanWorld world;
};

TEST_F(Receipts, AreTheLinesThatTheToolPrints) {
    world.answerOfPkgutil("com.acme.editor\\n\\ncom.acme.editor.pkg\\n");
    EXPECT_THAT(named(), ElementsAre("com.acme.editor", "com.acme.editor.pkg"));
    world.answerOfPkgutil("com.acme.editor");
    EXPECT_THAT(named(), ElementsAre("com.acme.editor")) << "the last line needs no end";
}

TEST_F(Receipts, AreNoneWhereTheToolFailsOrIsNotThere) {
    EXPECT_THAT(named(), IsEmpty());
    world.answerOfPkgutil("com.acme.editor\\n", 1);
    EXPECT_THAT(named(), IsEmpty());
    world.host.tools.pkgutil = "/nowhere/pkgutil";
    EXPECT_THAT(named(), IsEmpty());
}

TEST_F(Receipts, AreOnlyWhatCanBeIdentifiers) {
    world.answerOfPkgutil(
        "../../etc\\n/etc/passwd\\n..\\n.\\nError: no such thing\\ncom.acme\\teditor\\n\\001\\nok\\n");
    EXPECT_THAT(named(), ElementsAre("ok"));
    world.answerOfPkgutil("ok\\n\\377\\376\\n");
    EXPECT_THAT(named(), IsEmpty()) << "what is no text is no answer";
}

TEST_F(Receipts, StayFewWhenTheToolPrintsWithoutEnd) {
    world.host.tools.pkgutil = world.tool("pkgutil", "yes com.acme.editor.number | head -c 100000000");
    const auto identifiers = named();
    EXPECT_LT(identifiers.size(), 50'000U);
    EXPECT_GT(identifiers.size(), 40'000U);
    for (const auto& identifier : identifiers)
        ASSERT_EQ(identifier, "com.acme.editor.number") << "none is cut in its middle";
    world.host.tools.pkgutil = world.tool("pkgutil", "head -c 100000000 /dev/zero | tr '\\0' 'a'");
    EXPECT_THAT(named(), IsEmpty());
}

TEST_F(Receipts, AreAskedForWithAPatternThatFitsNothingElse) {
    EXPECT_EQ(PackageReceipts::patternOf("com.acme-2_x"), "com\\.acme-2_x");
    EXPECT_EQ(PackageReceipts::patternOf("a.b[c]\\(d)*e+f?{1}|^$"), "a\\.b\\[c]\\\\\\(d\\)\\*e\\+f\\?\\{1}\\|\\^\\$");
    world.answerOfPkgutil("");
    PackageReceipts::named(world.host, "a b'c;$(touch x)`");
    EXPECT_EQ(world.askedOfPkgutil(), "--pkgs=a b'c;\\$\\(touch x\\)`\n");
}

}  // namespace
}  // namespace tarvik
