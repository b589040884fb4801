#include "Copying/HiddenName.h"
#include "Health/HealthCheck.h"
#include "Health/HealthWorld.h"
#include "HealthRepair/HealthRepair.h"
#include "Support/FailureOf.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>

namespace tarvik {

namespace {

using testing::UnorderedElementsAre;

class SandboxRestoring : public testing::Test {
protected:
    SandboxRestoring() {
        world.withRealDitto();
        test::makeFile(target / "Data/file");
        test::makeLink(link, target);
    }

    std::string perform() const {
        return HealthRepair::perform(
            world.host, {.kind = HealthIssue::Kind::sandboxExternalSymlink, .location = link, .target = target},
            HealthRepairStrategy::restoreSandboxExternal);
    }
    std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (const auto& entry : fs::directory_iterator(link.parent_path())) found.push_back(entry.path().filename());
        return found;
    }

    test::HealthWorld world;
    const fs::path link = world.library / "Containers/org.example.Editor";
    const fs::path target = world.drive / "org.example.Editor";
    const std::string stash = "org.example.Editor.tarvik-stashed-2026-11-15T174543Z";
};

}  // namespace

TEST_F(SandboxRestoring, CopiesTheDataBackAndKeepsBothEnds) {
    const auto picture = test::pictureOf(target);
    EXPECT_EQ(perform(), "Restored org.example.Editor to internal disk. (External copy left at " + target.native() +
                             "; stashed symlink at " + stash + ".)");
    EXPECT_FALSE(fs::is_symlink(link));
    EXPECT_EQ(test::pictureOf(link), picture);
    EXPECT_EQ(test::pictureOf(target), picture);
    EXPECT_EQ(fs::read_symlink(link.parent_path() / stash), target);
    EXPECT_THAT(names(), UnorderedElementsAre("org.example.Editor", stash));
}

TEST_F(SandboxRestoring, BringsASingleFileBack) {
    fs::remove_all(target);
    test::makeFile(target, "bytes");
    perform();
    EXPECT_EQ(test::contentOf(link), "bytes");
    EXPECT_THAT(names(), UnorderedElementsAre("org.example.Editor", stash));
}

TEST_F(SandboxRestoring, GivesTheLinkItsNameBackWhenTheCopyFails) {
    world.withDitto("mkdir -p \"$3\"; echo part > \"$3/part\"; exit 1");
    EXPECT_EQ(perform(), "ditto failed restoring org.example.Editor; reverted.");
    EXPECT_EQ(fs::read_symlink(link), target);
    EXPECT_THAT(names(), UnorderedElementsAre("org.example.Editor"));
}

TEST_F(SandboxRestoring, TakesNoCopyThatLacksSomething) {
    world.withDitto("mkdir -p \"$3\"; exit 0");
    EXPECT_EQ(perform(), "ditto failed restoring org.example.Editor; reverted.");
    EXPECT_EQ(fs::read_symlink(link), target);
    EXPECT_THAT(names(), UnorderedElementsAre("org.example.Editor"));
}

TEST_F(SandboxRestoring, LeavesTheLinkInItsPlaceWhenTheToolCannotBeStarted) {
    world.host.tools.ditto = "/nowhere/ditto";
    EXPECT_NE(test::failureOf([&] { perform(); }), "done");
    EXPECT_THAT(names(), UnorderedElementsAre("org.example.Editor"));
    EXPECT_EQ(fs::read_symlink(link), target);
}

TEST_F(SandboxRestoring, KeepsTheLinkInItsPlaceWhileItCopies) {
    world.withDitto("[ -L '" + link.native() + "' ] || exit 9; cp -aT \"$2\" \"$3\"");
    EXPECT_THAT(perform(), testing::StartsWith("Restored "));
}

TEST_F(SandboxRestoring, TakesNothingOutOfItsPlaceButTheLink) {
    world.withDitto("cp -aT \"$2\" \"$3\"; rm '" + link.native() + "'; mkdir '" + link.native() + "'; echo new > '" +
                    link.native() + "/new'");
    const std::string failure = test::failureOf([&] { perform(); });
    EXPECT_THAT(failure, testing::HasSubstr(test::wordsFor(EEXIST)));
    EXPECT_THAT(failure, testing::Not(testing::HasSubstr(".tarvik-")));
    EXPECT_EQ(test::contentOf(link / "new"), "new\n");
    EXPECT_THAT(names(), UnorderedElementsAre("org.example.Editor"));
}

TEST_F(SandboxRestoring, LeavesWhatHasTakenTheLinksPlace) {
    fs::remove(link);
    test::makeFile(link / "new");
    EXPECT_EQ(test::failureOf([&] { perform(); }),
              "org.example.Editor is not what it was when it was checked. Nothing was changed.");
    EXPECT_THAT(names(), UnorderedElementsAre("org.example.Editor"));
}

TEST_F(SandboxRestoring, IsNoFindingAgain) {
    world.remember(link, target);
    perform();
    EXPECT_THAT(HealthCheck::run(world.host, HealthCheck::applicationRoots(world.host)).problems(), testing::IsEmpty());
}

TEST_F(SandboxRestoring, ClearsWhatAKilledOneHasLeft) {
    test::makeFile(HiddenName::forCopyTo(link) / "org.example.Editor/part");
    perform();
    EXPECT_THAT(names(), UnorderedElementsAre("org.example.Editor", stash));
}

TEST_F(SandboxRestoring, DoesNothingWithoutATarget) {
    EXPECT_EQ(HealthRepair::perform(world.host, {.kind = HealthIssue::Kind::sandboxExternalSymlink, .location = link},
                                    HealthRepairStrategy::restoreSandboxExternal),
              "No target for org.example.Editor; nothing to restore.");
    EXPECT_EQ(fs::read_symlink(link), target);
}

}  // namespace tarvik
