#include "Platform/Bundles/RunningBundle.h"
#include "Platform/Files/Files.h"
#include "Support/Bundles.h"
#include "Support/FailureOf.h"
#include "Support/Tree.h"
#include "UninstallRun/LaunchProgram.h"
#include "UninstallRun/UninstallQuestions.h"
#include "UninstallRun/UninstallRunWorld.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using UninstallQuestions::Running;

class UninstallQuestionsTest : public testing::Test {
protected:
    std::vector<Running> running(const std::optional<std::set<std::string>>& paths = std::nullopt) const {
        return UninstallQuestions::running(world.host, world.plan, paths);
    }
    /// Lets an application run from the bundle.
    void start(const fs::path& bundle, bool isListed = true) {
        world.applications->inUse.push_back(bundle);
        if (isListed) world.applications->list.push_back({.process = 7, .startTime = 1, .bundlePath = bundle});
    }
    /// The plist of an agent as a candidate.
    fs::path agent(const PropertyList::Dictionary& job, const char* folder = "LaunchAgents") {
        const fs::path plist = world.library(folder) / "org.example.Foo.plist";
        makeFile(plist, PropertyList(job).xml());
        world.plan.candidates.push_back(world.candidate(plist, UninstallCategory::launchAgents));
        return plist;
    }

    UninstallRunWorld world;
};

}  // namespace

TEST_F(UninstallQuestionsTest, AsksInFixedWords) {
    world.plan.candidates.assign(3, world.plan.candidates[0]);
    const Dialog question = UninstallQuestions::confirm(world.plan);
    EXPECT_EQ(question.title, "Uninstall Foo?");
    EXPECT_EQ(question.text,
              "Will move 3 items to Trash. This action moves files; it does not permanently delete them.");
    EXPECT_THAT(question.buttons, ElementsAre("Uninstall", "Cancel"));
}

TEST_F(UninstallQuestionsTest, TellsWhatALinkLeavesBehind) {
    const fs::path moved = world.drive / "ExternalTarvik/Data/Foo";
    const fs::path link = world.library("Caches/Foo");
    makeFolder(moved);
    makeLink(link, moved);
    world.plan.candidates.push_back(world.candidate(link, UninstallCategory::caches));
    EXPECT_THAT(UninstallQuestions::leftBehind(world.plan, {world.bundle.native()}), IsEmpty());
    EXPECT_THAT(UninstallQuestions::leftBehind(world.plan, {link.native()}),
                ElementsAre("Only the link " + link.native() + " goes. What it leads to stays: " + moved.native()));
    EXPECT_THAT(UninstallQuestions::leftBehind(world.plan, {link.native(), moved.native()}), IsEmpty());
}

TEST_F(UninstallQuestionsTest, WaitsForNoProgramThatNothingCanQuit) {
    const Running agent{"/a/foo-agent", "foo-agent", false, true};
    UninstallQuestions::quit(world.host, {agent});
    EXPECT_EQ(UninstallQuestions::goesOn(agent),
              "foo-agent is started by the system and goes on until you log out: /a/foo-agent");
    EXPECT_THAT(UninstallQuestions::quitRunning({agent}).details, ElementsAre(UninstallQuestions::goesOn(agent)));
}

TEST_F(UninstallQuestionsTest, AsksBeforeAWayBack) {
    using State = UninstallUndo::Item::State;
    AppUninstallSession session;
    session.appName = "Foo";
    std::vector<UninstallUndo::Item> items(3);
    items[0].state = items[1].state = State::waiting;
    items[2].originalPath = "/a/b";
    items[2].reason = "Something stands at its old place.";
    Dialog question = UninstallQuestions::confirmPutBack(session, items);
    EXPECT_EQ(question.title, "Put back Foo?");
    EXPECT_EQ(question.text, "Will bring 2 items back to their old places. Nothing that stands there is replaced.");
    EXPECT_THAT(question.details, ElementsAre("/a/b: Something stands at its old place."));
    items.resize(1);
    question = UninstallQuestions::confirmPutBack(session, items);
    EXPECT_EQ(question.text, "Will bring 1 item back to its old place. Nothing that stands there is replaced.");
    EXPECT_THAT(question.details, IsEmpty());
}

TEST_F(UninstallQuestionsTest, NamesAnApplicationThatRuns) {
    EXPECT_THAT(running(), IsEmpty());
    start(world.bundle);
    EXPECT_THAT(running(), ElementsAre(Running{world.bundle, "Foo", true}));
    EXPECT_THAT(running(std::set<std::string>{}), IsEmpty());
    // It would go on writing to its data.
    world.addData(world.library("Caches/Foo"));
    EXPECT_THAT(running(std::set<std::string>{world.library("Caches/Foo").native()}),
                ElementsAre(Running{world.bundle, "Foo", true}));
}

TEST_F(UninstallQuestionsTest, NamesAnApplicationThatRunsFromItsDrive) {
    const fs::path copy = world.drive / "ExternalTarvik/Apps/Foo.app";
    makeBundle(copy);
    fs::remove_all(world.bundle);
    makeLink(world.bundle, copy);
    world.plan = world.planWith({});
    world.plan.app.externalTargetPath = copy;
    start(copy);
    EXPECT_THAT(running(), ElementsAre(Running{copy, "Foo", true}));
}

TEST_F(UninstallQuestionsTest, NamesTheProgramOfALaunchAgent) {
    const fs::path helper = world.folder / "Applications/Foo Helper.app";
    makeBundle(helper);
    const fs::path plist =
        agent({{"ProgramArguments", PropertyList::List{"/Applications/Foo Helper.app/Contents/MacOS/program", "-x"}}});
    EXPECT_THAT(running(), IsEmpty());
    start(helper, false);
    EXPECT_THAT(running(), ElementsAre(Running{helper, "Foo Helper", false}));
    EXPECT_THAT(running(std::set<std::string>{world.bundle.native()}), IsEmpty());
}

TEST_F(UninstallQuestionsTest, NamesTheProgramOfAnAgentThatIsInNoBundle) {
    const fs::path program = world.folder / "usr/local/bin/foo-agent";
    makeSleeper(program);
    const ChildProcess running = runTold(program, {"100"});
    agent({{"Program", "/usr/local/bin/foo-agent"}});
    EXPECT_THAT(this->running(), ElementsAre(Running{program, "foo-agent", false, true}));
    // Nothing can quit it, and it does not keep the uninstall.
    UninstallQuestions::quit(world.host, this->running(), std::chrono::milliseconds(1));
}

TEST_F(UninstallQuestionsTest, NamesThatItIsOneProgramOnce) {
    start(world.bundle);
    agent({{"Program", "/Applications/Foo.app/Contents/MacOS/program"}});
    EXPECT_THAT(running(), ElementsAre(Running{world.bundle, "Foo", true}));
}

TEST_F(UninstallQuestionsTest, AsksToQuitInWordsOfItsOwn) {
    const Dialog one = UninstallQuestions::quitRunning({{"/a/Foo.app", "Foo", true}});
    EXPECT_EQ(one.title, "1 item is running");
    EXPECT_EQ(one.text, "Removing what runs can lose its data.\n\nFoo\n\nQuit automatically before uninstalling?");
    EXPECT_THAT(one.buttons, ElementsAre("Quit & Uninstall", "Cancel"));
    EXPECT_THAT(one.details, IsEmpty());
    const Dialog two = UninstallQuestions::quitRunning({{"/a/Foo.app", "Foo", true}, {"/b/agent", "agent", false}});
    EXPECT_EQ(two.title, "2 items are running");
    EXPECT_THAT(two.details, ElementsAre("agent cannot be quit from here: /b/agent"));
}

TEST_F(UninstallQuestionsTest, QuitsWhatRuns) {
    start(world.bundle);
    world.applications->inUse.clear();
    world.applications->quitsWhenAsked = true;
    UninstallQuestions::quit(world.host, {{world.bundle, "Foo", true}});
    EXPECT_EQ(world.applications->terminated.size(), 1U);
    EXPECT_THAT(world.applications->forced, IsEmpty());
}

TEST_F(UninstallQuestionsTest, RefusesWhenSomethingStillRuns) {
    start(world.bundle, false);
    EXPECT_EQ(failureOf([&] {
                  UninstallQuestions::quit(world.host, {{world.bundle, "Foo", false}}, std::chrono::milliseconds(1));
              }),
              "Foo still runs. Quit it first.");
}

TEST(LaunchProgram, IsWhatTheJobNames) {
    UninstallRunWorld world;
    const fs::path plist = world.library("LaunchAgents/a.plist");
    const auto programOf = [&](const PropertyList::Dictionary& job) {
        makeFile(plist, PropertyList(job).xml());
        return LaunchProgram::of(world.host, plist);
    };
    EXPECT_EQ(programOf({{"Program", "/usr/bin/a"}}), world.folder / "usr/bin/a");
    EXPECT_EQ(programOf({{"ProgramArguments", PropertyList::List{"/usr/bin/b", "c"}}}), world.folder / "usr/bin/b");
    EXPECT_EQ(programOf({{"Program", "/a"}, {"ProgramArguments", PropertyList::List{"/b"}}}), world.folder / "a");
    EXPECT_EQ(programOf({{"Program", (world.home / "bin/c").native()}}), world.home / "bin/c");
    EXPECT_EQ(programOf({{"Program", "relative"}}), std::nullopt);
    EXPECT_EQ(programOf({{"Program", ""}}), std::nullopt);
    EXPECT_EQ(programOf({{"ProgramArguments", PropertyList::List{}}}), std::nullopt);
    EXPECT_EQ(programOf({{"ProgramArguments", PropertyList::List{7}}}), std::nullopt);
    EXPECT_EQ(programOf({{"Label", "x"}}), std::nullopt);
    EXPECT_EQ(LaunchProgram::of(world.host, world.library("gone.plist")), std::nullopt);
}

}  // namespace tarvik::test
