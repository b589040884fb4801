#include "Health/HealthWorld.h"
#include "Health/SpotlightHealthCheck.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SpotlightCheck : public testing::Test {
protected:
    /// The tool answers for the two volumes by a piece of a shell script each, and notes that it was asked.
    std::vector<std::string> warnings(const std::string& ofData, const std::string& ofBoot,
                                      std::chrono::duration<double> limit = SpotlightHealthCheck::toolTimeout) {
        world.host.tools.mdutil =
            world.tool("mdutil", "[ \"$1\" = -s ] || exit 9\necho \"$2\" >> '" + (world.folder / "asked").native() +
                                     "'\ncase \"$2\" in *Data) " + ofData + ";; *) " + ofBoot + ";; esac");
        return SpotlightHealthCheck::warnings(world.host, limit);
    }
    std::string asked() const { return test::contentOf(world.folder / "asked"); }

    test::HealthWorld world;
    const std::string data = (world.folder / "System/Volumes/Data").native();
};

constexpr const char* fine = "echo 'Indexing enabled.'";

}  // namespace

TEST_F(SpotlightCheck, IsContentWithTheFirstVolumeThatAnswers) {
    EXPECT_THAT(warnings(fine, "exit 1"), IsEmpty());
    EXPECT_EQ(asked(), data + "\n");
}

TEST_F(SpotlightCheck, AsksTheSecondVolumeWhereTheFirstFails) {
    EXPECT_THAT(warnings("exit 1", fine), IsEmpty());
    EXPECT_EQ(asked(), data + "\n" + world.folder.path().native() + "\n");
}

TEST_F(SpotlightCheck, WarnsOfAnIndexThatIsOff) {
    EXPECT_THAT(warnings("echo 'Indexing Disabled.'", fine),
                ElementsAre("Spotlight indexing is disabled for " + data +
                            ". Launchpad search may not show new apps. Run: sudo mdutil -i on " + data));
    EXPECT_EQ(asked(), data + "\n") << "the second volume is not asked";
}

TEST_F(SpotlightCheck, WarnsOfAnIndexThatCannotBeWritten) {
    EXPECT_THAT(warnings("echo 'Index is READ-ONLY; indexing disabled' >&2; exit 1", fine),
                ElementsAre("Spotlight index is read-only for " + data +
                            ". Launchpad search may not show new apps. Run: sudo mdutil -i on " + data));
}

// mdutil(1) says of -s that it tells the state, and not how. These are answers of macOS 12 as administrators have
// published them: the volume with a colon, and below it the state, after a tab.
TEST_F(SpotlightCheck, ReadsTheAnswersOfAMac) {
    EXPECT_THAT(warnings("printf '%s:\\n\\tIndexing enabled. \\n' \"$2\"", "exit 1"), IsEmpty());
    EXPECT_THAT(warnings("printf '%s:\\n\\tIndexing and searching disabled.\\n' \"$2\"", fine),
                ElementsAre(testing::StartsWith("Spotlight indexing is disabled for " + data)));
}

TEST_F(SpotlightCheck, TakesNoAnswerThatComesTooLate) {
    const char* late = "trap 'exit 0' TERM; while :; do sleep 0.01; done";
    EXPECT_THAT(warnings(late, "echo 'Indexing disabled.'", std::chrono::seconds(3)), testing::SizeIs(1));
}

TEST_F(SpotlightCheck, DrownsInNoFlood) {
    EXPECT_THAT(warnings("yes | head -c 100000000", fine), IsEmpty());
    EXPECT_THAT(warnings("printf '\\377'", fine), IsEmpty());
}

TEST_F(SpotlightCheck, WarnsOnceWhenNobodyAnswers) {
    const char* unknown = "Could not check Spotlight indexing; Launchpad visibility may lag.";
    EXPECT_THAT(warnings("exit 1", "exit 1"), ElementsAre(unknown));
    EXPECT_THAT(warnings("exec sleep 100", "exec sleep 100", std::chrono::milliseconds(50)), ElementsAre(unknown));
    world.host.tools.mdutil = "/nowhere/mdutil";
    EXPECT_THAT(SpotlightHealthCheck::warnings(world.host), ElementsAre(unknown));
}

}  // namespace tarvik
