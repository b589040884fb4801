#include "CommandLine/CommandWorld.h"
#include "CommandLine/Lines.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Support/Bundles.h"
#include "Support/HostOf.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <toml++/toml.h>

#include <csignal>

namespace tarvik {

namespace {

using test::CommandWorld;
using test::linesOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// A practice machine with installers in the home.
struct InstallCommandWorld : CommandWorld {
    InstallCommandWorld() {
        test::makeFolder(downloads);
        test::makeFile(script, "#!/bin/sh\n# \x1b[31mred\ncp -R Tool.app /Applications/\n");
    }
    /// What programs are told of.
    std::string textOf(const std::vector<std::string>& arguments) const {
        const auto finished = run(arguments);
        EXPECT_EQ(finished.status, 0) << finished.errors;
        EXPECT_EQ(finished.errors, "");
        return finished.output;
    }
    void makeOption(const std::string& id, const std::string& label, const std::string& rootName) const {
        test::makeFile(optionFolder / (id + ".toml"),
                       fmt::format("id = \"{}\"\nlabel = \"{}\"\nstrategy = \"own\"\nsourceKinds = [\"app\", \"dmg\"]\n"
                                   "allowUntrustedPackages = false\nexternalRootName = \"{}\"\n"
                                   "applicationLinkRoot = \"/Applications\"\ntrack = true\nrelocateSafeApps = false\n",
                                   id, label, rootName));
    }
    /// A tool that shows `volume` as an image, notes what it is asked, and first does what `before` says.
    void attachAs(const fs::path& volume, const std::string& before = "") {
        replaceTool("hdiutil",
                    fmt::format("echo \"$1\" >> '{}'\n[ \"$1\" = attach ] || exit 0\n{}\ncat <<END\n"
                                "<plist version=\"1.0\"><dict><key>system-entities</key><array><dict>"
                                "<key>mount-point</key><string>{}</string></dict></array></dict></plist>\nEND",
                                (folder / "asked").native(), before, volume.native()));
    }

    fs::path downloads = machine.home / "Downloads";
    fs::path script = downloads / "install.command";
    fs::path optionFolder = AppStorageNames::userInstallerOptionsRoot(test::hostOf(machine.root, machine.home));
};

}  // namespace

TEST(InstallCommand, TellsAllOfASource) {
    const InstallCommandWorld world;
    const std::string text = world.textOf({"install", "inspect", world.script});
    EXPECT_EQ(linesOf(text).front(), world.script.native());
    EXPECT_THAT(text, HasSubstr("\nKind:                  script\nTrust:                 untrusted-script\n"));
    EXPECT_THAT(text, HasSubstr("\n! Shell script — runs arbitrary code with sudo.\n"));
    EXPECT_THAT(text, HasSubstr("\nWhat is known of its trust:\n  #!/bin/sh\n  Lines: 3\n"
                                "  References: cp -R Tool.app /Applications/\n"));
}

TEST(InstallCommand, WritesASourceForPrograms) {
    const InstallCommandWorld world;
    const auto tsv = linesOf(world.textOf({"install", "inspect", world.script, "--format", "tsv"}));
    ASSERT_EQ(tsv.size(), 4U);
    EXPECT_EQ(tsv[0], "inspection\tscript\t" + world.script.native());
    EXPECT_EQ(tsv[1], "warning\tShell script — runs arbitrary code with sudo.");
    EXPECT_THAT(tsv[3], StartsWith("item\tscript\t"));
    const auto document = toml::parse(world.textOf({"install", "inspect", world.script, "--format", "toml"}));
    EXPECT_EQ(document["trust"]["status"].value<std::string>(), "untrusted-script");
    EXPECT_EQ(document["items"][0]["path"].value<std::string>(), world.script.native());
}

TEST(InstallCommand, SaysWhatItCannotInstall) {
    const InstallCommandWorld world;
    test::makeFile(world.downloads / "notes.txt", "hello");
    const std::string text = world.textOf({"install", "inspect", world.downloads / "notes.txt"});
    EXPECT_THAT(text, HasSubstr("Trust:                 unsupported\n"));
    EXPECT_THAT(text, HasSubstr("! Unsupported source type.\n"));
}

TEST(InstallCommand, SaysWhenNothingIsThere) {
    const InstallCommandWorld world;
    const fs::path missing = world.downloads / "Gone.dmg";
    test::makeLink(world.downloads / "Link.dmg", missing);
    for (const auto& arguments : {std::vector<std::string>{"install", "inspect", missing},
                                  {"install", "plan", missing, "--drive", "Studio Drive"}}) {
        const auto finished = world.run(arguments);
        EXPECT_EQ(finished.status, 1);
        EXPECT_EQ(finished.output, "");
        EXPECT_EQ(finished.errors, "Nothing stands at " + missing.native() + ".\n");
    }
    const auto dangling = world.run({"install", "inspect", world.downloads / "Link.dmg"});
    EXPECT_EQ(dangling.status, 1);
    EXPECT_EQ(dangling.errors, "The link " + (world.downloads / "Link.dmg").native() + " leads nowhere.\n");
}

TEST(InstallCommand, ChangesNothingWhenItLooks) {
    const InstallCommandWorld world;
    test::makeBundle(world.downloads / "Mixer.app");
    test::makeFile(world.downloads / "Mixer.pkg");
    const auto before = test::pictureOf(world.machine.root);
    for (const char* name : {"Mixer.app", "Mixer.pkg", "install.command"}) {
        world.run({"install", "inspect", world.downloads / name});
        world.run({"install", "plan", world.downloads / name, "--drive", "Studio Drive"});
    }
    EXPECT_EQ(test::pictureOf(world.machine.root), before);
}

TEST(InstallCommand, NamesWhatWasInAnArchiveByItsPathThere) {
    TARVIK_NEEDS_MADE_TOOLS();
    InstallCommandWorld world;
    test::makeFile(world.downloads / "Mixer.zip");
    world.replaceTool("ditto", "mkdir -p \"$4/Extras/Mixer.app\"");
    const std::string text = world.textOf({"install", "inspect", world.downloads / "Mixer.zip"});
    EXPECT_THAT(text, HasSubstr("  application  Extras/Mixer.app\n"));
    EXPECT_THAT(text, Not(HasSubstr((world.machine.root / "tmp").native())));
}

TEST(InstallCommand, DetachesAnImageBeforeASignalEndsIt) {
    TARVIK_NEEDS_MADE_TOOLS();
    InstallCommandWorld world;
    test::makeFile(world.downloads / "Mixer.dmg");
    const fs::path volume = world.folder / "Attached" / "Mixer";
    test::makeBundle(volume / "Mixer.app");
    // What is attached is told only after the signal has come, which the tool itself survives.
    world.attachAs(volume, fmt::format("trap '' INT TERM HUP\ntouch '{}'\n{}", (world.folder / "begun").native(),
                                       test::waitFor(world.folder / "go on")));
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        for (const char* name : {"begun", "go on", "asked"}) fs::remove(world.folder / name);
        test::RunningProgram program(world.command,
                                     world.onMachine({"install", "inspect", world.downloads / "Mixer.dmg"}));
        ASSERT_TRUE(test::comesToStand(world.folder / "begun"));
        program.signalGroup(signal);
        test::makeFile(world.folder / "go on");
        const auto finished = program.finish();
        EXPECT_EQ(finished.status, 1);
        EXPECT_EQ(finished.output, "");
        EXPECT_EQ(finished.errors, "Stopped: the command was asked to end.\n");
        EXPECT_EQ(test::contentOf(world.folder / "asked"), "attach\ndetach\n");
    }
}

TEST(InstallCommand, ListsTheOptions) {
    const InstallCommandWorld world;
    const auto lines = linesOf(world.textOf({"install", "options"}));
    ASSERT_GE(lines.size(), 5U);
    EXPECT_THAT(lines[0], StartsWith("ID "));
    EXPECT_THAT(lines, Contains(StartsWith("tracked-script-external ")));
    const auto tsv = linesOf(world.textOf({"install", "options", "--format", "tsv"}));
    EXPECT_EQ(tsv.size(), lines.size() - 1);
    EXPECT_THAT(tsv, Contains("option\ttracked-script-external\tScripts\ttracked-script"));
    const auto document = toml::parse(world.textOf({"install", "options", "--format", "toml"}));
    EXPECT_EQ(document["options"].as_array()->size(), tsv.size());
    EXPECT_EQ(document["options"][0]["allowUntrustedScripts"].value<bool>(), false);
}

TEST(InstallCommand, ListsTheUsersOptionsAndSaysWhichAreRefused) {
    const InstallCommandWorld world;
    world.makeOption("tracked-script-external", "Mine instead", "Tools");
    world.makeOption("bad", "Elsewhere", "..");
    const auto listed = world.run({"install", "options", "--format", "tsv"});
    EXPECT_EQ(listed.status, 0);
    EXPECT_THAT(linesOf(listed.output), Contains("option\ttracked-script-external\tMine instead\town"));
    EXPECT_THAT(listed.output, Not(HasSubstr("\tScripts\t")));
    const std::string refusal =
        "The option \"bad\" cannot be used: its externalRootName must be the name of a folder on the drive.\n";
    EXPECT_EQ(listed.errors, refusal);
    test::makeBundle(world.downloads / "Mixer.app");
    const auto planned =
        world.run({"install", "plan", world.downloads / "Mixer.app", "--drive", "Studio Drive", "--option", "bad"});
    EXPECT_EQ(planned.status, 1);
    EXPECT_EQ(planned.output, "");
    EXPECT_EQ(planned.errors, refusal);
}

TEST(InstallCommand, PlansWithTheFirstOption) {
    const InstallCommandWorld world;
    const fs::path bundle = world.downloads / "Mixer.app";
    test::makeBundle(bundle);
    const std::string goal = (world.drive / "ExternalTarvik/Apps/Mixer.app").native();
    const std::string text = world.textOf({"install", "plan", bundle, "--drive", "Studio Drive"});
    EXPECT_THAT(linesOf(text).front(), HasSubstr("with the option \"Applications and signed packages\""));
    EXPECT_THAT(text, HasSubstr("\n  1. Copy the application: " + bundle.native() + " → " + goal + "\n"));
    EXPECT_THAT(text, HasSubstr(fmt::format("\n  2. Make a launcher: {}/Applications/Mixer.app → {}\n",
                                            world.machine.root.native(), goal)));
    EXPECT_EQ(linesOf(text).back(), "Nothing was changed.");
}

TEST(InstallCommand, PlansWithTheOptionThatIsNamed) {
    const InstallCommandWorld world;
    world.makeOption("mine", "Mine", "Tools");
    const std::vector<std::string> arguments = {"install",  "plan", world.script, "--drive", "Studio Drive",
                                                "--option", "mine", "--format",   "tsv"};
    const auto lines = linesOf(world.textOf(arguments));
    EXPECT_THAT(lines.front(), StartsWith("plan\tmine\t"));
    EXPECT_EQ(lines.back(), "action\tinspect-contained\t" + world.script.native());
    auto forToml = arguments;
    forToml.back() = "toml";
    EXPECT_THAT(world.run(forToml).output, HasSubstr("\noption = \"mine\"\ntargetDrive = \"" + world.drive.native()));
}

TEST(InstallCommand, RefusesWhatIsNotThere) {
    const InstallCommandWorld world;
    const auto option = world.run({"install", "plan", world.script, "--drive", "Studio Drive", "--option", "Scripts"});
    EXPECT_EQ(option.status, 2);
    EXPECT_THAT(option.errors,
                StartsWith("There is no option \"Scripts\". \"tarvik install options\" shows all.\nUsage: "));
    EXPECT_EQ(world.run({"install", "plan", world.script, "--drive", "Nowhere"}).status, 2);
}

TEST(InstallCommand, OffersOptionsToWhoeverTypes) {
    const InstallCommandWorld world;
    const auto finished = test::runProgram(world.command, {"--complete", "fish", "--root", world.machine.root.native(),
                                                           "install", "plan", "/a.dmg", "--option", ""});
    EXPECT_THAT(linesOf(finished.output), Contains("tracked-script-external\tScripts"));
}

TEST(InstallCommand, KnowsNoOptionWhereNoneCameWithIt) {
    TARVIK_NEEDS_MADE_TOOLS();
    InstallCommandWorld world;
    world.replaceTool("mdutil", "true");
    const auto human = world.run({"install", "options"});
    EXPECT_EQ(human.output, "");
    EXPECT_EQ(human.errors, "There are no options for installers.\n");
    EXPECT_EQ(world.textOf({"install", "options", "--format", "tsv"}), "\n");
    EXPECT_EQ(world.textOf({"install", "options", "--format", "toml"}), "options = []\n");
    EXPECT_EQ(world.run({"install", "plan", world.script, "--drive", "Studio Drive"}).errors,
              "There are no options for installers.\n");
}

}  // namespace tarvik
