#include "CommandLine/CommandWorld.h"

#include "CommandLine/Lines.h"
#include "Platform/Machine/ToolRules.h"
#include "Support/ShellScript.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gtest/gtest.h>

namespace tarvik::test {

CommandWorld::CommandWorld() : CommandWorld(Practice::Options{.apps = 1, .files = 60}) {}

CommandWorld::CommandWorld(const Practice::Options& options)
    : machine(Practice::build(folder / "machine", options)),
      command(programOfThisBuild("tarvik")),
      library(machine.home / "Music/Logic Pro Library.bundle"),
      drive(machine.root / "Volumes/Studio Drive"),
      moved(drive / "ExternalTarvik/Folders/Logic Pro Library.bundle") {}

CommandWorld::CommandWorld(const std::string& ditto) : CommandWorld() {
    replaceTool("ditto", ditto);
}

void CommandWorld::replaceTool(const std::string& name, const std::string& script) {
    // Tools are looked for beside the program that runs.
    const auto programs = folder / "programs";
    const auto tool = programs / "stand-ins" / name;
    makeFolder(tool.parent_path());
    if (command != programs / "tarvik") fs::copy_file(command, programs / "tarvik");
    command = programs / "tarvik";
    makeFile(tool, scriptOf(script));
    fs::permissions(tool, fs::perms::owner_all);
}

bool CommandWorld::takesMadeTools() {
    return systemTools().ditto.parent_path() == ToolRules::standIns();
}

std::vector<std::string> CommandWorld::onMachine(const std::vector<std::string>& arguments) const {
    std::vector<std::string> all = {"--root", machine.root.native()};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return all;
}

Finished CommandWorld::run(const std::vector<std::string>& arguments, RunningProgram::Streams streams) const {
    return runProgram(command, onMachine(arguments), streams);
}

std::vector<std::string> CommandWorld::moveOfLibrary(const std::vector<std::string>& more) const {
    std::vector<std::string> arguments = {"move", "folder", library.native(), "--drive", "Studio Drive"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return onMachine(arguments);
}

void CommandWorld::expectEmptyList(const std::string& verb, const std::string& sentence) const {
    const auto human = run({verb});
    EXPECT_EQ(human.output, "");
    EXPECT_EQ(human.errors, sentence + "\n");
    EXPECT_EQ(human.status, 0);
    EXPECT_EQ(linesOf(run({verb, "--format", "tsv"}).output).size(), 1U);
    EXPECT_EQ(run({verb, "--format", "toml"}).output, verb + " = []\n");
}

}  // namespace tarvik::test
