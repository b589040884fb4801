#include "CommandLine/CommandWorld.h"
#include "CommandLine/Lines.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <toml++/toml.h>

namespace tarvik {

namespace {

using test::columnOf;
using test::CommandWorld;
using test::linesOf;
using testing::Contains;
using testing::ContainsRegex;
using testing::HasSubstr;

}  // namespace

TEST(LinkCommand, ListsTheLinksForEyes) {
    const CommandWorld world;
    const auto finished = world.run({"links"});
    EXPECT_EQ(finished.status, 0);
    EXPECT_EQ(finished.errors, "");
    const auto lines = linesOf(finished.output);
    EXPECT_THAT(lines.front(), ContainsRegex("^State +Size +Link +Leads to$"));
    EXPECT_THAT(lines, Contains(ContainsRegex("^ok +[0-9]+ KB +/.*/Applications/Faraway.app +/.*/Apps/Faraway.app$")));
    EXPECT_THAT(lines, Contains(ContainsRegex("^broken +/.*/Applications/Unplugged.app +/.*/Apps/Unplugged.app$")));
    EXPECT_THAT(lines, Contains(ContainsRegex("^ok +41 KB +~/Library/Application Support/Faraway +/")));
}

TEST(LinkCommand, ListsTheLinksForPrograms) {
    const CommandWorld world;
    const auto tsv = world.run({"links", "--format", "tsv"}).output;
    EXPECT_EQ(linesOf(tsv).front(), "link\ttarget\tbytes\tstate");
    const auto links = columnOf(tsv, "link");
    EXPECT_TRUE(std::is_sorted(links.begin(), links.end()));
    const auto toml = toml::parse(world.run({"links", "--format", "toml"}).output);
    ASSERT_EQ(toml["links"].as_array()->size(), links.size());
    for (std::size_t at = 0; at < links.size(); ++at) {
        const auto& link = *toml["links"][at].as_table();
        EXPECT_EQ(link["link"].value<std::string>(), links[at]);
        const fs::path target = link["target"].value<std::string>().value();
        const bool isThere = fs::exists(target);
        EXPECT_EQ(link["state"].value<std::string>(), isThere ? "ok" : "broken");
        EXPECT_EQ(link["bytes"].value<std::int64_t>().value() > 0, isThere) << target;
    }
}

TEST(LinkCommand, ShowsTheLinkThatAMoveLeaves) {
    const CommandWorld world;
    ASSERT_EQ(world.run({"move", "folder", world.library.native(), "--drive", "Backup", "--yes"}).status, 0);
    EXPECT_THAT(world.run({"links"}).output, HasSubstr("  ~/Music/Logic Pro Library.bundle  "));
}

TEST(LinkCommand, SaysWhenThereAreNoLinks) {
    const CommandWorld world;
    for (const auto& link : columnOf(world.run({"links", "--format", "tsv"}).output, "link")) fs::remove(link);
    world.expectEmptyList("links", "No links were found where things are moved from.");
}

}  // namespace tarvik
