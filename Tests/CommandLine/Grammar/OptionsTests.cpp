#include "CommandLine/Grammar/Options.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace tarvik::CommandLine {

namespace {

using Arguments = std::vector<std::string>;

Options optionsOf(const Arguments& arguments) {
    return std::get<Options>(parse(arguments));
}

std::string sentenceOf(const Arguments& arguments) {
    try {
        parse(arguments);
    } catch (const WrongUse& use) {
        return use.description();
    }
    return "understood";
}

std::string usageFor(const Arguments& arguments) {
    try {
        parse(arguments);
    } catch (const WrongUse& use) {
        return use.usage();
    }
    return "understood";
}

}  // namespace

TEST(Options, TakesGlobalOptionsBeforeAndAfterTheVerb) {
    const Arguments before = {"--root", "/r",   "--home", "/h", "--format", "tsv",
                              "--yes",  "move", "folder", "/f", "--drive",  "D"};
    const Arguments after = {"move", "folder", "/f", "--drive", "D", "--yes", "--format=tsv", "--home=/h", "--root=/r"};
    const Arguments between = {"move",    "--root", "/r",    "folder", "--home",   "/h",
                               "--drive", "D",      "--yes", "/f",     "--format", "tsv"};
    const Options expected{.verb = Options::Verb::moveFolder,
                           .path = "/f",
                           .drive = "D",
                           .root = "/r",
                           .home = "/h",
                           .format = Format::tsv,
                           .yes = true};
    EXPECT_EQ(optionsOf(before), expected);
    EXPECT_EQ(optionsOf(after), expected);
    EXPECT_EQ(optionsOf(between), expected);
}

TEST(Options, KnowsTheVerbs) {
    EXPECT_EQ(optionsOf({"drives"}).verb, Options::Verb::drives);
    EXPECT_EQ(optionsOf({"move", "folder", "/f", "--drive", "D"}).verb, Options::Verb::moveFolder);
    EXPECT_EQ(optionsOf({"move", "restore", "/f"}).verb, Options::Verb::moveRestore);
    EXPECT_EQ(optionsOf({"apps"}).verb, Options::Verb::apps);
    EXPECT_EQ(optionsOf({"links"}).verb, Options::Verb::links);
    EXPECT_EQ(optionsOf({"launchers"}).verb, Options::Verb::launchers);
    EXPECT_EQ(optionsOf({"move", "app", "A", "--drive", "D", "--dry-run"}).verb, Options::Verb::moveApp);
    EXPECT_EQ(optionsOf({"backup", "create", "/f", "--drive", "D"}).verb, Options::Verb::backupCreate);
    EXPECT_EQ(optionsOf({"backup", "list", "--drive", "D"}).verb, Options::Verb::backupList);
}

TEST(Options, TakesTheNamesOfApplications) {
    EXPECT_TRUE(optionsOf({"apps"}).names.empty());
    EXPECT_EQ(optionsOf({"apps", "Logic Pro"}).names, Arguments{"Logic Pro"});
    const auto options =
        optionsOf({"move", "app", "A", "--drive", "D", "b c", "--no-data", "--dry-run", "-", "--", "--yes", "--"});
    EXPECT_EQ(options.names, (Arguments{"A", "b c", "-", "--yes", "--"}));
    EXPECT_EQ(options.drive, "D");
    EXPECT_FALSE(options.yes);
    EXPECT_TRUE(options.isDryRun);
    EXPECT_FALSE(options.includesData);
    EXPECT_TRUE(optionsOf({"move", "app", "A", "--drive", "D", "--dry-run"}).includesData);
    for (const auto* name : {"drives", "apps", "move", "app"}) {
        EXPECT_EQ(optionsOf({"apps", name}).names, Arguments{name});
        EXPECT_EQ(optionsOf({"move", "app", name, "--drive", "D", "--dry-run"}).names, Arguments{name});
    }
}

TEST(Options, TakesThePathsOfABackup) {
    using Paths = std::vector<fs::path>;
    const auto options =
        optionsOf({"backup", "create", "A", "--drive", "D", "b c", "--yes", "[x]", "-", "--", "--yes", "create"});
    EXPECT_EQ(options.paths, (Paths{"A", "b c", "[x]", "-", "--yes", "create"}));
    EXPECT_EQ(options.path, "");
    EXPECT_EQ(options.drive, "D");
    EXPECT_TRUE(options.yes);
    for (const auto* path : {"backup", "create", "list", "move", "\xFF\xFE", "a\nb", "[]"})
        EXPECT_EQ(optionsOf({"backup", "create", path, "--drive", "D"}).paths, Paths{path});
}

TEST(Options, SaysWhatABackupLacks) {
    EXPECT_EQ(sentenceOf({"backup"}), "What shall be done? Name one of: backup create, backup list.");
    EXPECT_EQ(sentenceOf({"backup", "delete"}), "There is no \"backup delete\". There is: backup create, backup list.");
    EXPECT_EQ(sentenceOf({"backup", "create", "--drive", "D"}), "Name what shall be backed up: a PATH is missing.");
    EXPECT_EQ(sentenceOf({"backup", "create", "/f"}),
              "Name the drive that the backup shall go to, with --drive DRIVE.");
    EXPECT_EQ(sentenceOf({"backup", "create", "/f", "", "--drive", "D"}), "A PATH is empty.");
    EXPECT_EQ(sentenceOf({"backup", "create", "", "--drive", "D"}), "A PATH is empty.");
    EXPECT_EQ(sentenceOf({"backup", "create", "/f", "--drive"}), "--drive needs a value: --drive DRIVE.");
    EXPECT_EQ(sentenceOf({"backup", "create", "/f", "--drive", "D", "--dry-run"}),
              "--dry-run belongs to move app and uninstall.");
    EXPECT_EQ(sentenceOf({"backup", "list"}), "Name the drive whose backups shall be listed, with --drive DRIVE.");
    EXPECT_EQ(sentenceOf({"backup", "list", "/f", "--drive", "D"}), "\"/f\" is one word too many.");
    EXPECT_EQ(sentenceOf({"backup", "list", "--drive", "D", "--quick"}), "There is no option \"--quick\".");
}

TEST(Options, TakesTheWishToRepair) {
    EXPECT_FALSE(optionsOf({"launchers"}).repairs);
    EXPECT_TRUE(optionsOf({"launchers", "--repair"}).repairs);
    EXPECT_TRUE(optionsOf({"--yes", "launchers", "--repair"}).repairs);
    EXPECT_EQ(sentenceOf({"links", "--repair"}), "--repair belongs to launchers alone.");
    EXPECT_EQ(sentenceOf({"launchers", "--repair=all"}), "--repair takes no value.");
    EXPECT_EQ(sentenceOf({"launchers", "Editor"}), "\"Editor\" is one word too many.");
    EXPECT_EQ(usageFor({"launchers", "Editor"}), "tarvik launchers [--repair]");
}

TEST(Options, SaysWhatAMoveOfApplicationsLacks) {
    EXPECT_EQ(sentenceOf({"move", "app", "--drive", "D", "--dry-run"}),
              "Name the applications that shall move: a NAME is missing.");
    EXPECT_EQ(sentenceOf({"move", "app", "A", "--dry-run"}),
              "Name the drive that the applications shall move to, with --drive DRIVE.");
    EXPECT_FALSE(optionsOf({"move", "app", "A", "--drive", "D"}).isDryRun);
    EXPECT_FALSE(optionsOf({"move", "app", "A", "--drive", "D"}).quitsRunning);
    EXPECT_TRUE(optionsOf({"move", "app", "A", "--drive", "D", "--quit-running"}).quitsRunning);
    EXPECT_EQ(sentenceOf({"move", "app", "A", "", "--drive", "D", "--dry-run"}), "A NAME is empty.");
    EXPECT_EQ(sentenceOf({"apps", ""}), "A NAME is empty.");
    EXPECT_EQ(sentenceOf({"apps", "Logic", "Pro"}),
              "\"Pro\" is one word too many: one NAME at a time, and in quotes when it holds a space.");
    EXPECT_EQ(sentenceOf({"apps", "--dry-run"}), "--dry-run belongs to move app and uninstall.");
    EXPECT_EQ(sentenceOf({"move", "folder", "/f", "--drive", "D", "--no-data"}),
              "--no-data belongs to move app alone.");
    EXPECT_EQ(sentenceOf({"move", "app", "A", "--drive", "D", "--dry-run=no"}), "--dry-run takes no value.");
}

TEST(Options, TakesAPathThatBearsTheNameOfAVerb) {
    for (const auto* name : {"drives", "move", "folder", "restore"}) {
        EXPECT_EQ(optionsOf({"move", "folder", name, "--drive", "D"}).path, name);
        EXPECT_EQ(optionsOf({"move", "restore", name}).names, Arguments{name});
    }
}

TEST(Options, TakesEveryNameByteForByte) {
    for (const auto* name : {"a b", " ", "-", "[x]", "{}", "[]", "a,b", "%%", "\"quoted\"", "'", "a=b", "\\n", "é",
                             "\xFF\xFE", "a\nb", "~"}) {
        EXPECT_EQ(optionsOf({"move", "restore", name}).names, Arguments{name});
        EXPECT_EQ(optionsOf({"apps", name}).names, Arguments{name});
        EXPECT_EQ(optionsOf({"move", "app", name, "x", "--drive", "D", "--dry-run"}).names, (Arguments{name, "x"}));
        EXPECT_EQ(optionsOf({"move", "folder", "/f", "--drive", name}).drive, name);
        EXPECT_EQ(optionsOf({"--root", name, "drives"}).root, name);
    }
    EXPECT_EQ(optionsOf({"move", "restore", "a b", "--", "--yes"}).names, (Arguments{"a b", "--yes"}));
}

TEST(Options, SaysWhatIsWrong) {
    EXPECT_EQ(
        sentenceOf({}),
        "What shall be done? Name one of: drives, apps, links, launchers, move app, move folder, move restore, backup "
        "create, backup list, health, health repair, uninstall, uninstall apps, uninstall list, uninstall undo, "
        "install inspect, install options, install plan, dedupe, completion.");
    EXPECT_EQ(sentenceOf({"frobnicate"}),
              "There is no \"frobnicate\". There is: drives, apps, links, launchers, move app, move folder, move "
              "restore, backup "
              "create, backup list, health, health repair, uninstall, uninstall apps, uninstall list, uninstall undo, "
              "install inspect, install options, install plan, dedupe, completion.");
    EXPECT_EQ(sentenceOf({"move"}), "What shall be done? Name one of: move app, move folder, move restore.");
    EXPECT_EQ(sentenceOf({"move", "file"}),
              "There is no \"move file\". There is: move app, move folder, move restore.");
    EXPECT_EQ(sentenceOf({"move", "folder", "--drive", "D"}), "Name the folder that shall move: a PATH is missing.");
    EXPECT_EQ(sentenceOf({"move", "restore"}),
              "Name the links or the applications that shall come back: a NAME or a PATH is missing.");
    EXPECT_EQ(sentenceOf({"move", "folder", "/f"}),
              "Name the drive that the folder shall move to, with --drive DRIVE.");
    EXPECT_EQ(sentenceOf({"--format", "yaml", "drives"}), "\"yaml\" is no format. There is: human, tsv, toml.");
    EXPECT_EQ(sentenceOf({"drives", "extra"}), "\"extra\" is one word too many.");
    EXPECT_EQ(sentenceOf({"drives", "--quick"}), "There is no option \"--quick\".");
    EXPECT_EQ(sentenceOf({"-x"}), "There is no option \"-x\".");
    EXPECT_EQ(sentenceOf({"--quick", "frobnicate"}),
              "There is no \"frobnicate\". There is: drives, apps, links, launchers, move app, move folder, move "
              "restore, backup "
              "create, backup list, health, health repair, uninstall, uninstall apps, uninstall list, uninstall undo, "
              "install inspect, install options, install plan, dedupe, completion.");
    EXPECT_EQ(sentenceOf({"move", "folder", "/f", "/g", "--drive", "D"}),
              "\"/g\" is one word too many: one PATH at a time, and in quotes when it holds a space.");
    EXPECT_EQ(sentenceOf({"move", "folder", "--", "-f", "--drive", "D"}),
              "\"--drive\" is one word too many: behind \"--\" nothing is an option.");
    EXPECT_EQ(sentenceOf({"drives", "--drive", "D"}),
              "--drive belongs to move app, move folder, backup and install plan.");
    EXPECT_EQ(sentenceOf({"move", "restore", "/f", "--drive=D"}),
              "--drive belongs to move app, move folder, backup and install plan.");
}

TEST(Options, RefusesEmptyPaths) {
    EXPECT_EQ(sentenceOf({"move", "restore", ""}), "A NAME is empty.");
    EXPECT_EQ(sentenceOf({"move", "folder", "", "--drive", "D"}), sentenceOf({"move", "folder", "--drive", "D"}));
    EXPECT_EQ(sentenceOf({"move", "folder", "/f", "--drive", ""}), sentenceOf({"move", "folder", "/f"}));
    EXPECT_EQ(sentenceOf({"--root", "", "drives"}), "--root needs a path that is not empty.");
    EXPECT_EQ(sentenceOf({"--home", "", "drives"}), "--home needs a path that is not empty.");
}

TEST(Options, RefusesAnOptionWithoutItsValueOrGivenTwice) {
    EXPECT_EQ(sentenceOf({"drives", "--root"}), "--root needs a value: --root DIR.");
    EXPECT_EQ(sentenceOf({"drives", "--format"}), "--format needs a value: --format FORMAT.");
    EXPECT_EQ(sentenceOf({"move", "folder", "/f", "--drive"}), "--drive needs a value: --drive DRIVE.");
    EXPECT_EQ(sentenceOf({"drives", "--root", "/a", "--root=/b"}), "--root can be given only once.");
    EXPECT_EQ(sentenceOf({"move", "folder", "/f", "--drive", "A", "--drive", "B"}), "--drive can be given only once.");
    EXPECT_EQ(sentenceOf({"drives", "--yes=maybe"}), "--yes takes no value.");
    EXPECT_EQ(sentenceOf({"drives", "--yes=1"}), "--yes takes no value.");
    EXPECT_EQ(sentenceOf({"health", "fix"}), "There is no \"health fix\". There is: health, health repair.");
    EXPECT_EQ(sentenceOf({"health", "--strategy=x"}), "--strategy belongs to health repair alone.");
    EXPECT_EQ(sentenceOf({"health", "repair", ""}), "A PATH is empty.");
    EXPECT_TRUE(optionsOf({"drives", "--yes", "--yes"}).yes);
}

TEST(Options, TakesPlacesAndAStrategyForARepair) {
    EXPECT_EQ(optionsOf({"health"}).verb, Options::Verb::health);
    EXPECT_EQ(optionsOf({"health", "repair"}).verb, Options::Verb::healthRepair);
    const auto options = optionsOf({"health", "repair", "/a", "--strategy", "reclaimReverted", "--", "-b"});
    EXPECT_EQ(options.paths, (std::vector<fs::path>{"/a", "-b"}));
    EXPECT_EQ(options.strategy, "reclaimReverted");
}

TEST(Options, RemovesDuplicatesOnlyWhenAsked) {
    EXPECT_EQ(optionsOf({"dedupe"}).verb, Options::Verb::dedupe);
    EXPECT_FALSE(optionsOf({"dedupe"}).removes);
    EXPECT_TRUE(optionsOf({"dedupe", "--remove"}).removes);
    EXPECT_EQ(sentenceOf({"dedupe", "Edit"}), "\"Edit\" is one word too many.");
    EXPECT_EQ(sentenceOf({"dedupe", "--remove=all"}), "--remove takes no value.");
    EXPECT_EQ(sentenceOf({"dedupe", "--repair"}), "--repair belongs to launchers alone.");
    EXPECT_EQ(sentenceOf({"launchers", "--remove"}), "--remove belongs to dedupe alone.");
    EXPECT_EQ(usageFor({"dedupe", "x"}), "tarvik dedupe [--remove]");
}

TEST(Options, ShowsHowTheVerbThatIsMeantIsWritten) {
    const std::string app = "tarvik move app NAME... --drive DRIVE [--no-data] [--quit-running] [--dry-run]";
    const std::string folder = "tarvik move folder PATH --drive DRIVE";
    const std::string restore = "tarvik move restore NAME|PATH...";
    const std::string backups = "tarvik backup create PATH... --drive DRIVE\n       tarvik backup list --drive DRIVE";
    const std::string health = "tarvik health\n       tarvik health repair [PATH...] [--strategy STRATEGY]";
    const std::string uninstalls =
        "tarvik uninstall NAME [--only-app] [--with receipts|launch-daemons|external-target|PATH]... [--quit-running] "
        "[--dry-run]\n       tarvik uninstall apps [NAME]\n       tarvik uninstall list [ID]\n       tarvik uninstall "
        "undo ID";
    const std::string installs =
        "tarvik install inspect SOURCE\n       tarvik install options\n       tarvik install plan SOURCE --drive DRIVE "
        "[--option ID]";
    EXPECT_EQ(usageFor({"uninstall"}), uninstalls);
    EXPECT_EQ(usageFor({"install"}), installs);
    EXPECT_EQ(usageFor({"uninstall", "undo"}), "tarvik uninstall undo ID");
    EXPECT_EQ(usageFor({"drives", "x"}), "tarvik drives");
    EXPECT_EQ(usageFor({"move", "folder"}), folder);
    EXPECT_EQ(usageFor({"move", "folder", "/f", "--drive"}), folder);
    EXPECT_EQ(usageFor({"move", "restore", "--format", "xml", "/f"}), restore);
    EXPECT_EQ(usageFor({"apps", "a", "b"}), "tarvik apps [NAME]");
    EXPECT_EQ(usageFor({"move", "app", "a", "--drive"}), app);
    EXPECT_EQ(usageFor({"move"}), app + "\n       " + folder + "\n       " + restore);
    EXPECT_EQ(
        usageFor({}),
        "tarvik drives\n       tarvik apps [NAME]\n       tarvik links\n       tarvik launchers [--repair]\n       " +
            app + "\n       " + folder + "\n       " + restore + "\n       " + backups + "\n       " + health +
            "\n       " + uninstalls + "\n       " + installs +
            "\n       tarvik dedupe [--remove]\n       tarvik completion SHELL");
    EXPECT_EQ(usageFor({"backup"}), backups);
    EXPECT_EQ(usageFor({"health", "x"}), health);
}

TEST(Options, GivesHelpAndVersionAsText) {
    const auto help = std::get<Information>(parse({"--help"})).text;
    for (const auto* word : {"drives", "move", "--root", "--home", "--format", "--yes", "--version", "Exit status"})
        EXPECT_NE(help.find(word), std::string::npos) << word;
    EXPECT_EQ(std::get<Information>(parse({"--version"})).text, "tarvik " TARVIK_VERSION "\n");
    const auto verbHelp = std::get<Information>(parse({"move", "folder", "--help"})).text;
    EXPECT_NE(verbHelp.find("--drive"), std::string::npos);
    EXPECT_NE(verbHelp.find("Usage: tarvik move folder PATH --drive DRIVE\n"), std::string::npos) << verbHelp;
    for (const auto& arguments : {Arguments{"-h"}, {"move", "-h"}, {"drives", "--help"}, {"move", "restore", "--help"}})
        EXPECT_NE(std::get<Information>(parse(arguments)).text.find("Usage: tarvik "), std::string::npos);
}

TEST(Options, GivesTheScriptOfAShellAsText) {
    for (const auto& arguments : {Arguments{"completion", "zsh"}, {"completion", "--", "zsh"}})
        EXPECT_EQ(std::get<Information>(parse(arguments)).text.substr(0, 15), "#compdef tarvik");
    EXPECT_EQ(sentenceOf({"completion"}), "Name the shell, one of: bash, zsh, fish.");
    EXPECT_EQ(sentenceOf({"completion", "csh"}),
              "\"csh\" is no shell that can be completed in. There is: bash, zsh, fish.");
    EXPECT_EQ(sentenceOf({"completion", "zsh", "fish"}), "\"fish\" is one word too many.");
    EXPECT_EQ(usageFor({"completion"}), "tarvik completion SHELL");
}

TEST(Options, DescribesWhatHelpShows) {
    const auto command = describe();
    EXPECT_EQ(command.name, "tarvik");
    EXPECT_EQ(command.usages.size(), 20U);
    EXPECT_EQ(command.options.front().names, (Arguments{"-h", "--help"}));
    const auto& move =
        *std::find_if(command.verbs.begin(), command.verbs.end(), [](const auto& verb) { return verb.name == "move"; });
    const auto& app = move.verbs.front();
    EXPECT_EQ(app.words, "move app");
    EXPECT_EQ(app.usages, Arguments{std::string(usageOf(Verb::moveApp))});
    EXPECT_EQ(app.arguments.front().name, "NAME");
    EXPECT_TRUE(app.arguments.front().repeats);
    EXPECT_EQ(app.options.front(), (OptionDescription{{"--drive"}, "DRIVE", "The drive: its mount path or its name"}));
    EXPECT_FALSE(command.verbs[1].arguments.front().repeats);
}

}  // namespace tarvik::CommandLine
