#include "Installers/Install/InstallWorld.h"
#include "Installers/Install/PackageAppTargets.h"
#include "Platform/Files/Files.h"
#include "Support/Mutator.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iostream>
#include <regex>
#include <set>
#include <string>

namespace tarvik::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class PackageAppTargetsTest : public testing::Test {
protected:
    /// The archive tool gets its package first and its folder third.
    void unpackBy(const std::string& script) { world.host.tools.xar = world.tool("xar", script); }
    std::vector<std::string> namesOf() {
        std::vector<std::string> names;
        for (const auto& target : PackageAppTargets::of(world.host, world.folder / "Some.pkg")) {
            EXPECT_EQ(target.parent_path(), world.folder / "Applications");
            names.push_back(target.filename());
        }
        return names;
    }
    std::vector<std::string> namesInTemporary() const { return Files::names(world.host.temporary); }

    InstallWorld world;
};

}  // namespace

TEST(PackageAppTargets, AreNamedInTheDescription) {
    EXPECT_THAT(PackageAppTargets::namesIn(R"(<bundle path="/Applications/Editor.app" id="org.example"/>)"),
                ElementsAre("Editor.app"));
    EXPECT_THAT(PackageAppTargets::namesIn("a /Applications/B.app\nb</Applications/A.app>\n"),
                ElementsAre("A.app", "B.app"));
}

TEST(PackageAppTargets, AreOneALineAtMost) {
    EXPECT_THAT(PackageAppTargets::namesIn("/Applications/A.app /Applications/B.app"), ElementsAre("A.app"));
    EXPECT_THAT(PackageAppTargets::namesIn("/Applications/A.app\r/Applications/B.app\u2028/Applications/C.app"),
                ElementsAre("A.app", "B.app", "C.app"));
}

TEST(PackageAppTargets, StandDirectlyInTheFolderOfApplications) {
    EXPECT_THAT(PackageAppTargets::namesIn("/Applications/Suite/A.app"), IsEmpty());
    EXPECT_THAT(PackageAppTargets::namesIn("/Applications/Applications/A.app"), ElementsAre("A.app"));
    EXPECT_THAT(PackageAppTargets::namesIn("/Applications/../etc/A.app"), IsEmpty());
    EXPECT_THAT(PackageAppTargets::namesIn("/Applications/.app"), IsEmpty());
    EXPECT_THAT(PackageAppTargets::namesIn("/applications/A.app"), IsEmpty());
    EXPECT_THAT(PackageAppTargets::namesIn(std::string("/Applications/A.app\0.app", 24)), IsEmpty());
}

TEST(PackageAppTargets, EndAtTheirLastEnding) {
    EXPECT_THAT(PackageAppTargets::namesIn("/Applications/A.app.app.old"), ElementsAre("A.app.app"));
    EXPECT_THAT(PackageAppTargets::namesIn("/Applications/A.application"), ElementsAre("A.app"));
    EXPECT_THAT(PackageAppTargets::namesIn("/Applications/A\u00A0B.app"), IsEmpty());
    EXPECT_THAT(PackageAppTargets::namesIn("/Applications/\u00C9tude.app"), ElementsAre("\u00C9tude.app"));
    EXPECT_THAT(PackageAppTargets::namesIn("/Applications/(.*)+$.app"), ElementsAre("(.*)+$.app"));
}

TEST(PackageAppTargets, AreThoseOfTheExpression) {
    // The library's own engine, over what it can read: one byte a character.
    const std::regex expression(R"(/Applications/[^"<\s/]+\.app)");
    constexpr int runs = 3000;
    int found = 0;
    for (unsigned seed = 1; seed <= runs; ++seed) {
        std::mt19937 random(seed);
        std::string line;
        const std::vector<std::string> pieces = {
            "/Applications/", "/Applications", "/", ".app", "app", "A", ".", "\"", "<", " ", "\t", "B.", ".app/"};
        for (unsigned piece = random() % 12; piece > 0; --piece) line += pieces[random() % pieces.size()];
        std::smatch match;
        std::set<std::string> expected;
        if (std::regex_search(line, match, expression))
            expected.insert(match.str().substr(std::string("/Applications/").size()));
        EXPECT_EQ(PackageAppTargets::namesIn(line), expected) << line;
        found += static_cast<int>(expected.size());
    }
    EXPECT_GT(found, 100);
    std::cout << runs << " lines, " << found << " with a name\n";
}

TEST_F(PackageAppTargetsTest, AreReadFromBothDescriptions) {
    const std::string description = "\"/Applications/";
    unpackBy("mkdir \"$4/Sub.pkg\" \"$4/Deep\"; printf '" + description + "A.app' > \"$4/PackageInfo\"; printf '" +
             description + "B.app' > \"$4/Distribution\"; printf '" + description +
             "C.app' > \"$4/Sub.pkg/PackageInfo\"; printf '" + description +
             "D.app' > \"$4/Deep/Distribution\"; printf '" + description +
             "E.app' > \"$4/PackageInfo.old\"; echo \"$@\" > " + (world.folder / "said").native());
    EXPECT_THAT(namesOf(), ElementsAre("A.app", "B.app", "C.app"));
    EXPECT_THAT(contentOf(world.folder / "said"),
                testing::MatchesRegex("-xf .*/Some.pkg -C .*/tmp/TarvikPkgInfo-[0-9A-F-]+ PackageInfo Distribution\n"));
    EXPECT_THAT(namesInTemporary(), IsEmpty());
}

TEST_F(PackageAppTargetsTest, AreReadWhateverTheToolSays) {
    unpackBy("printf '/Applications/A.app' > \"$4/PackageInfo\"; exit 1");
    EXPECT_THAT(namesOf(), ElementsAre("A.app"));
}

TEST_F(PackageAppTargetsTest, AreNoneWithoutADescription) {
    unpackBy("exit 1");
    EXPECT_THAT(namesOf(), IsEmpty());
    world.host.tools.xar = world.folder / "missing";
    EXPECT_THAT(namesOf(), IsEmpty());
    EXPECT_THAT(namesInTemporary(), IsEmpty());
}

TEST_F(PackageAppTargetsTest, AreNotReadFromWhatIsNoText) {
    unpackBy(
        "printf '/Applications/A.app\\377' > \"$4/PackageInfo\"; printf '/Applications/B.app' > \"$4/Distribution\"");
    EXPECT_THAT(namesOf(), ElementsAre("B.app"));
}

TEST_F(PackageAppTargetsTest, AreNotReadThroughLinksAndPipes) {
    makeFile(world.folder / "outside", "/Applications/A.app");
    unpackBy("ln -s " + (world.folder / "outside").native() + " \"$4/PackageInfo\"; mkfifo \"$4/Distribution\"");
    EXPECT_THAT(namesOf(), IsEmpty());
    EXPECT_TRUE(Files::exists(world.folder / "outside"));
    EXPECT_THAT(namesInTemporary(), IsEmpty());
}

TEST_F(PackageAppTargetsTest, AreNotReadFromAHugeDescription) {
    unpackBy("printf '/Applications/A.app' > \"$4/PackageInfo\"; truncate -s 100M \"$4/PackageInfo\"");
    EXPECT_THAT(namesOf(), IsEmpty());
}

TEST_F(PackageAppTargetsTest, MayBeAThousand) {
    unpackBy("i=0; while [ $i -lt 1000 ]; do echo \"/Applications/$i.app\"; i=$((i+1)); done > \"$4/PackageInfo\"");
    EXPECT_THAT(namesOf(), SizeIs(1000));
}

TEST_F(PackageAppTargetsTest, AreNoneWhereTheTemporaryFolderCannotBeMade) {
    makeFile(world.host.temporary, "no folder");
    unpackBy("echo /Applications/A.app > PackageInfo");
    EXPECT_THAT(namesOf(), IsEmpty());
}

TEST_F(PackageAppTargetsTest, LeaveNothingOfAKilledLook) {
    const fs::path leftover = world.host.temporary / "TarvikPkgInfo-01BE468E-9C73-4533-82F2-5C3C70B1431C";
    makeFile(leftover / "PackageInfo");
    makeFile(world.host.temporary / "TarvikZip-OTHER/file");
    unpackBy("exit 0");
    namesOf();
    EXPECT_THAT(namesInTemporary(), ElementsAre("TarvikZip-OTHER"));
}

}  // namespace tarvik::test
