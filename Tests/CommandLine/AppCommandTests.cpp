#include "CommandLine/CommandWorld.h"
#include "CommandLine/Lines.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <toml++/toml.h>

#include <algorithm>
#include <csignal>
#include <map>

namespace tarvik {

namespace {

using test::columnOf;
using test::CommandWorld;
using test::linesOf;
using testing::Contains;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using Streams = test::RunningProgram::Streams;

/// The values of one column of the list by the names of the applications.
std::map<std::string, std::string> byName(const std::string& tsv, const std::string& column) {
    std::map<std::string, std::string> values;
    const auto names = columnOf(tsv, "name");
    const auto cells = columnOf(tsv, column);
    for (std::size_t at = 0; at < names.size(); ++at) values[names[at]] = cells[at];
    return values;
}

/// Puts a shell script in the place of one of the machine's tools.
void makeTool(const CommandWorld& world, const std::string& name, const std::string& script) {
    const auto tool = world.command.parent_path() / "stand-ins" / name;
    test::makeFile(tool, "#!/bin/sh\n" + script + "\n");
    fs::permissions(tool, fs::perms::owner_all);
}

}  // namespace

TEST(AppCommand, ListsTheApplicationsForEyes) {
    const CommandWorld world;
    const auto finished = world.run({"apps"});
    EXPECT_EQ(finished.status, 0);
    EXPECT_EQ(finished.errors, "");
    const auto lines = linesOf(finished.output);
    EXPECT_THAT(lines.front(), ContainsRegex("^Name +Version +Kind +Size +Data +Risk +Where$"));
    const auto where = lines.front().find("Where");
    const auto tunnel = (world.machine.root / "Applications/Tunnel.app").native();
    EXPECT_THAT(lines, Contains(ContainsRegex("^Tunnel +7.1 +app +[0-9]+ KB +Zero KB +high +" + tunnel + "$")));
    EXPECT_THAT(lines, Contains(ContainsRegex("^Inside +1.0 +in a symlink ")));
    EXPECT_THAT(lines, Contains(ContainsRegex("^Unplugged +symlink +Zero KB ")));
    const auto tunnelLine =
        *std::find_if(lines.begin(), lines.end(), [](const std::string& line) { return line.starts_with("Tunnel "); });
    EXPECT_EQ(tunnelLine.find(tunnel), where);
}

TEST(AppCommand, ListsEveryKindOfApplicationForPrograms) {
    const CommandWorld world;
    const auto finished = world.run({"apps", "--format", "tsv"});
    EXPECT_EQ(finished.status, 0);
    EXPECT_EQ(finished.errors, "");
    EXPECT_EQ(linesOf(finished.output).front(),
              "name\tbundleIdentifier\tversion\tdeveloper\tkind\tappBytes\tdataBytes\ttotalBytes\tdataPaths\trisk\t"
              "macAppStore\tloginItems\tsystemExtension\talreadyMoved\tpath\tleadsTo\tmodified\twarnings");
    auto kinds = byName(finished.output, "kind");
    EXPECT_EQ(kinds["Tunnel"], "normal");
    EXPECT_EQ(kinds["Home Brew"], "userApplications");
    EXPECT_EQ(kinds["Faraway"], "symlink");
    EXPECT_EQ(kinds["Launched"], "tarvikLauncher");
    EXPECT_EQ(kinds["Paper Store"], "macAppStore");
    EXPECT_EQ(kinds.count("Ghost"), 0U);
    EXPECT_EQ(kinds.count("Clock"), 0U);

    auto leadsTo = byName(finished.output, "leadsTo");
    const auto apps = (world.machine.drives.back() / "ExternalTarvik/Apps/Launched.app").native();
    EXPECT_EQ(leadsTo["Launched"], apps);
    EXPECT_EQ(leadsTo["Inside"],
              (world.machine.drives.front() / "ExternalTarvik/Folders/Linked Suite/Inside.app").native());
    EXPECT_EQ(leadsTo["Tunnel"], "");
    EXPECT_EQ(byName(finished.output, "alreadyMoved")["Inside"], "true");
    EXPECT_EQ(byName(finished.output, "alreadyMoved")["Tunnel"], "false");
    EXPECT_EQ(byName(finished.output, "systemExtension")["Tunnel"], "true");
    EXPECT_EQ(byName(finished.output, "developer")["Mixer"], "2026 Practice Sounds");
    EXPECT_EQ(
        byName(finished.output, "warnings")["Everything"],
        "Mac App Store app — moving may break the receipt\\nHas a system extension — do not move\\nRegisters a login "
        "item / helper");
}

TEST(AppCommand, ListsTheLargestFirst) {
    const CommandWorld world;
    const auto tsv = world.run({"apps", "--format", "tsv"}).output;
    std::vector<long long> totals;
    for (const auto& cell : columnOf(tsv, "totalBytes")) totals.push_back(std::stoll(cell));
    EXPECT_GT(totals.front(), totals.back());
    EXPECT_TRUE(std::is_sorted(totals.rbegin(), totals.rend()));
    const auto app = columnOf(tsv, "appBytes");
    const auto data = columnOf(tsv, "dataBytes");
    for (std::size_t at = 0; at < totals.size(); ++at)
        EXPECT_EQ(totals[at], std::stoll(app[at]) + std::stoll(data[at]));
}

TEST(AppCommand, WritesTheListAsToml) {
    const CommandWorld world;
    const auto toml = toml::parse(world.run({"apps", "--format", "toml"}).output);
    const auto& apps = *toml["apps"].as_array();
    EXPECT_EQ(apps.size(), linesOf(world.run({"apps", "--format", "tsv"}).output).size() - 1);
    for (const auto& app : apps) {
        const auto& table = *app.as_table();
        EXPECT_TRUE(table["appBytes"].is_integer());
        EXPECT_TRUE(table["macAppStore"].is_boolean());
        EXPECT_TRUE(table["warnings"].is_array());
    }
}

TEST(AppCommand, SaysWhenThereAreNoApplications) {
    const CommandWorld world;
    fs::remove_all(world.machine.root / "Applications");
    fs::remove_all(world.machine.home / "Applications");
    world.expectEmptyList("apps", "No applications were found.");
}

TEST(AppCommand, KeepsOddNamesInTheirCells) {
    const CommandWorld world;
    const std::string name = "tab\there\nthere\x1B[2J" + std::string(180, 'x');
    test::makeFolder(world.machine.root / "Applications" / (name + ".app"));
    const auto tsv = linesOf(world.run({"apps", "--format", "tsv"}).output);
    EXPECT_THAT(tsv, Contains(StartsWith("tab\\there\\nthere\x1B[2Jxxx")));
    const auto human = world.run({"apps"}).output;
    EXPECT_EQ(human.find('\x1B'), std::string::npos);
    EXPECT_EQ(linesOf(human).size(), tsv.size());
    EXPECT_EQ(world.run({"apps", name}).status, 0);
}

TEST(AppCommand, CountsOnATerminalWhileItMeasures) {
    const CommandWorld world;
    const auto count = linesOf(world.run({"apps", "--format", "tsv"}).output).size() - 1;
    const auto output = world.run({"apps"}, Streams::terminal).output;
    EXPECT_THAT(output, HasSubstr("measuring applications  ["));
    EXPECT_THAT(output, HasSubstr("  0 of " + std::to_string(count)));
    EXPECT_THAT(output, HasSubstr("\r\x1B[KName  "));
    EXPECT_THAT(world.run({"apps", "--format", "tsv"}, Streams::terminal).output, Not(HasSubstr("measuring")));
}

TEST(AppCommand, TellsAllAboutOneApplication) {
    const CommandWorld world;
    const auto finished = world.run({"apps", "full house"});
    EXPECT_EQ(finished.status, 0);
    const auto lines = linesOf(finished.output);
    EXPECT_EQ(lines.front(), "Full House");
    EXPECT_THAT(lines, Contains("  Identifier    org.example.fullhouse"));
    EXPECT_THAT(lines, Contains("  Where         " + (world.machine.root / "Applications/Full House.app").native()));
    EXPECT_THAT(lines, Contains("  Signed by     Unsigned / Ad-hoc"));
    EXPECT_THAT(lines, Contains("  Notarization  Not signed"));
    EXPECT_THAT(lines, Contains(ContainsRegex("^Data: [0-9]+ KB$")));
    EXPECT_THAT(lines, Contains(ContainsRegex("^ +[0-9]+ KB  Caches, 7 items$")));
    EXPECT_THAT(lines, Contains(ContainsRegex("^ +[0-9]+ KB  ~/Library/Caches/org.example.fullhouse$")));
    EXPECT_THAT(finished.output, Not(HasSubstr("Developer")));
    EXPECT_THAT(finished.output, Not(HasSubstr("Warning")));
    EXPECT_THAT(finished.output, Not(HasSubstr("Leads to")));
}

TEST(AppCommand, WarnsOnALineForEachRisk) {
    const CommandWorld world;
    const auto output = world.run({"apps", "Everything"}).output;
    EXPECT_THAT(output, HasSubstr("\n  Has           an App Store receipt, login items, a system extension\n"));
    EXPECT_THAT(output, HasSubstr("\nWarning: Mac App Store app — moving may break the receipt\n"
                                  "Warning: Has a system extension — do not move\n"
                                  "Warning: Registers a login item / helper\n"));
    EXPECT_THAT(output, HasSubstr("\nIt keeps no data outside of its bundle.\n"));
}

TEST(AppCommand, SaysWhereAMovedApplicationIs) {
    const CommandWorld world;
    const auto drive = world.machine.drives.front() / "ExternalTarvik/Apps";
    EXPECT_THAT(world.run({"apps", "Faraway"}).output,
                HasSubstr("  Leads to      " + (drive / "Faraway.app").native() + "\n"));
    EXPECT_THAT(world.run({"apps", "Unplugged"}).output,
                ContainsRegex("Leads to +/.*/Unplugged.app \\(not there\\)\n"));
    // The place that it leads to names it as well.
    EXPECT_THAT(world.run({"apps", (drive / "Faraway.app").native()}).output, StartsWith("Faraway\n"));
}

TEST(AppCommand, TellsWhoVouchesForAnApplicationWhereThatIsKnown) {
    TARVIK_NEEDS_MADE_TOOLS();
    const CommandWorld world("exit 1");
    EXPECT_THAT(world.run({"apps", "Tunnel"}).output, Not(HasSubstr("Signed by")));
    EXPECT_THAT(world.run({"apps", "Tunnel"}).output, Not(HasSubstr("Notarization")));
    makeTool(world, "codesign", "echo 'Authority=Developer ID Application: Acme (TEAM)' >&2");
    makeTool(world, "spctl", "echo 'source=Notarized Developer ID' >&2");
    const auto output = world.run({"apps", "Tunnel"}).output;
    EXPECT_THAT(output, HasSubstr("  Signed by     Acme\n"));
    EXPECT_THAT(output, HasSubstr("  Notarization  Notarized\n"));
    EXPECT_THAT(world.run({"apps", "Unplugged"}).output, Not(HasSubstr("Signed by")));
    const auto toml = toml::parse(world.run({"apps", "Tunnel", "--format", "toml"}).output);
    EXPECT_EQ(toml["signedBy"].value<std::string>(), "Acme");
    EXPECT_EQ(toml["notarization"].value<std::string>(), "Notarized");
    makeTool(world, "spctl", "echo 'who knows' >&2");
    EXPECT_THAT(world.run({"apps", "Tunnel"}).output, Not(HasSubstr("Notarization")));
}

TEST(AppCommand, EndsAtOnceOnASignal) {
    TARVIK_NEEDS_MADE_TOOLS();
    const CommandWorld world("exit 1");
    // What Ctrl-C does: the whole group gets the signal, in the middle of the act.
    makeTool(world, "codesign", "kill -INT 0; exec sleep 600");
    const auto finished = world.run({"apps", "Tunnel"});
    EXPECT_EQ(finished.status, 128 + SIGINT);
    EXPECT_EQ(finished.output, "");
}

TEST(AppCommand, WritesOneApplicationForPrograms) {
    const CommandWorld world;
    const auto toml = toml::parse(world.run({"apps", "Full House", "--format", "toml"}).output);
    EXPECT_EQ(toml["bundleIdentifier"].value<std::string>(), "org.example.fullhouse");
    const auto tsv = world.run({"apps", "Full House", "--format", "tsv"}).output;
    const auto paths = columnOf(tsv, "dataPath");
    const auto& data = *toml["data"].as_array();
    ASSERT_EQ(data.size(), paths.size());
    EXPECT_EQ(toml["dataPaths"].value<std::int64_t>(), static_cast<std::int64_t>(paths.size()));
    std::int64_t sum = 0;
    for (std::size_t at = 0; at < paths.size(); ++at) {
        EXPECT_EQ(data[at].at_path("dataPath").value<std::string>(), paths[at]);
        EXPECT_TRUE(fs::exists(paths[at])) << paths[at];
        sum += data[at].at_path("bytes").value<std::int64_t>().value();
    }
    EXPECT_EQ(toml["dataBytes"].value<std::int64_t>(), sum);
    EXPECT_THAT(columnOf(tsv, "category"), Contains("Caches"));
    EXPECT_THAT(columnOf(tsv, "name"), testing::Each("Full House"));
}

TEST(AppCommand, WritesAnApplicationWithoutDataAsOneLine) {
    const CommandWorld world;
    const auto tsv = world.run({"apps", "Tunnel", "--format", "tsv"}).output;
    EXPECT_EQ(columnOf(tsv, "name"), std::vector<std::string>{"Tunnel"});
    EXPECT_EQ(columnOf(tsv, "dataPath"), std::vector<std::string>{""});
    EXPECT_TRUE(toml::parse(world.run({"apps", "Tunnel", "--format", "toml"}).output)["data"].as_array()->empty());
}

TEST(AppCommand, CallsANameThatFitsNothingAWrongCommandLine) {
    const CommandWorld world;
    const auto none = world.run({"apps", "wonder"});
    EXPECT_EQ(none.status, 2);
    EXPECT_EQ(none.output, "");
    EXPECT_EQ(none.errors, "There is no application \"wonder\".\nUsage: tarvik apps [NAME]\n");
    EXPECT_THAT(world.run({"apps", "house"}).errors, HasSubstr("Close to it: Full House ("));
    test::makeFolder(world.machine.root / "Applications/Old/Tunnel.app");
    const auto two = world.run({"apps", "tunnel"});
    EXPECT_EQ(two.status, 2);
    EXPECT_THAT(two.errors, HasSubstr("More than one application is called \"tunnel\": Tunnel ("));
}

TEST(AppCommand, LetsNoNameAddALineToItsAnswer) {
    const CommandWorld world;
    test::makeFolder(world.machine.root / "Applications/Good\nUsage: bad.app");
    EXPECT_THAT(world.run({"apps", "good"}).errors,
                StartsWith("There is no application \"good\". Close to it: Good\uFFFDUsage: bad ("));
}

}  // namespace tarvik
