#include "Platform/Basics/Failure.h"
#include "Platform/Machine/Host.h"
#include "Platform/Storage/DriveScanner.h"
#include "Support/EnvironmentVariable.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <pwd.h>
#include <unistd.h>

namespace tarvik {
namespace {

using test::EnvironmentVariable;
using test::makeFile;
using test::makeFolder;
using test::makeLink;
using test::TemporaryFolder;

std::string refusalOf(const std::optional<fs::path>& root, const std::optional<fs::path>& home = std::nullopt) {
    try {
        Host::fromOptions(root, home);
    } catch (const Failure& failure) {
        return failure.description();
    }
    return "no refusal";
}

TEST(Host, OfThisMachineStandsAtTheRootWithTheUsersHome) {
    const TemporaryFolder world;
    makeLink(world / "link", world.path());
    const EnvironmentVariable home("HOME", (world / "link").native());
    const Host host = Host::thisMachine();
    EXPECT_EQ(host.root, "/");
    EXPECT_EQ(host.home, world.path());
    EXPECT_TRUE(fs::is_directory(host.temporary));
    EXPECT_EQ(host.tools, systemTools());
    EXPECT_TRUE(host.volumes && host.trash && host.runningApplications);
    EXPECT_GT(host.now().time_since_epoch().count(), 0);
}

TEST(Host, GuidesItsToolsToTheSameMachine) {
    const TemporaryFolder world;
    makeFolder(world / "Users/ada");
    const EnvironmentVariable root("TARVIK_ROOT", "/elsewhere");
    Host::fromOptions(world.path(), std::nullopt).guideTools();
    EXPECT_EQ(std::string(std::getenv("TARVIK_ROOT")), world.path().native());
    Host::thisMachine().guideTools();
    EXPECT_EQ(std::getenv("TARVIK_ROOT"), nullptr);
}

TEST(Host, AsksTheAccountWhenTheEnvironmentNamesNoHome) {
    for (const auto& value :
         {std::optional<std::string>(), std::optional<std::string>(""), std::optional<std::string>("relative/home")}) {
        const EnvironmentVariable home("HOME", value);
        const passwd* account = ::getpwuid(::getuid());
        ASSERT_TRUE(account);
        EXPECT_EQ(Host::thisMachine().home, fs::weakly_canonical(account->pw_dir));
    }
}

TEST(Host, OfThisMachineTakesAnotherHome) {
    const TemporaryFolder world;
    makeLink(world / "link", world.path());
    EXPECT_EQ(Host::thisMachine(world / "link").home, world.path());
}

TEST(Host, KnowsItsToolsByAbsolutePaths) {
    EXPECT_TRUE(systemTools().ditto.is_absolute());
    EXPECT_EQ(systemTools().ditto.filename(), "ditto");
    EXPECT_EQ(systemTools().find, "/usr/bin/find");
}

TEST(Host, RootedElsewhereMakesNothing) {
    const TemporaryFolder world;
    makeFolder(world / "Users/anna");
    const std::string before = test::pictureOf(world.path());
    const Host host = Host::rootedAt(world.path(), world / "Users/anna");
    DriveScanner::scan(host);
    EXPECT_EQ(host.root, world.path());
    EXPECT_EQ(host.home, world / "Users/anna");
    EXPECT_EQ(host.temporary, world / "tmp");
    EXPECT_EQ(test::pictureOf(world.path()), before);
}

TEST(Host, TakesTheOnlyUserOfARoot) {
    const TemporaryFolder world;
    makeFolder(world / "Users/anna");
    makeFolder(world / "Users/Shared");
    makeFolder(world / "Users/.hidden");
    makeFile(world / "Users/notes.txt");
    makeLink(world / "Users/link", world / "Users/anna");
    const Host host = Host::fromOptions(world.path(), std::nullopt);
    EXPECT_EQ(host.root, world.path());
    EXPECT_EQ(host.home, world / "Users/anna");
}

TEST(Host, ResolvesLinksInRootAndHome) {
    const TemporaryFolder world;
    makeFolder(world / "disk/Users/anna");
    makeLink(world / "link", world / "disk");
    EXPECT_EQ(Host::fromOptions(world / "link", std::nullopt).root, world / "disk");
    EXPECT_EQ(Host::fromOptions(world / "link", world / "link/Users/anna").home, world / "disk/Users/anna");
}

TEST(Host, TakesTheRootFolderAsThisMachine) {
    const TemporaryFolder world;
    const Host host = Host::fromOptions("/", world.path());
    EXPECT_EQ(host.root, "/");
    EXPECT_EQ(host.home, world.path());
    EXPECT_NE(host.temporary, world / "tmp");
}

TEST(Host, RefusesARootThatIsNotThere) {
    EXPECT_EQ(refusalOf("/no such place"), "The root /no such place does not exist.");
}

TEST(Host, RefusesARootThatIsAFile) {
    const TemporaryFolder world;
    makeFile(world / "file");
    EXPECT_EQ(refusalOf(world / "file"), "The root " + (world / "file").native() + " is not a folder.");
}

TEST(Host, RefusesARootWithoutUsers) {
    const TemporaryFolder world;
    EXPECT_EQ(refusalOf(world.path()),
              "There is no folder Users in " + world.path().native() + ": say with --home which home folder to use.");
    makeFolder(world / "Users/Shared");
    EXPECT_EQ(refusalOf(world.path()),
              "There is no user in " + (world / "Users").native() + ": say with --home which home folder to use.");
}

TEST(Host, NamesTheUsersThatItCannotChooseFrom) {
    const TemporaryFolder world;
    makeFolder(world / "Users/ben");
    makeFolder(world / "Users/anna");
    EXPECT_EQ(refusalOf(world.path()), "There are several users in " + (world / "Users").native() +
                                           " (anna, ben): say with --home whose home folder to use.");
    EXPECT_EQ(Host::fromOptions(world.path(), world / "Users/ben").home, world / "Users/ben");
}

TEST(Host, RefusesAHomeThatIsNotThere) {
    const TemporaryFolder world;
    const std::string expected = "The home folder " + (world / "gone").native() + " does not exist.";
    EXPECT_EQ(refusalOf(world.path(), world / "gone"), expected);
    EXPECT_EQ(refusalOf(std::nullopt, world / "gone"), expected);
    const EnvironmentVariable home("HOME", (world / "gone").native());
    EXPECT_EQ(refusalOf(std::nullopt), expected);
    EXPECT_EQ(refusalOf("/"), expected);
    makeFile(world / "file");
    EXPECT_EQ(refusalOf(world.path(), world / "file"),
              "The home folder " + (world / "file").native() + " is not a folder.");
}

}  // namespace
}  // namespace tarvik
