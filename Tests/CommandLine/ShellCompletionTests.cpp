#include "CommandLine/CommandWorld.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

namespace tarvik {

namespace {

using test::CommandWorld;
using testing::HasSubstr;

constexpr const char* oddName = "Zoë's \"Box\" & $5!";

/// A shell at a terminal, as a user starts it, in which the command is completed by its own script.
struct Shell {
    const char* label;
    const char* name;
    std::vector<std::string> arguments;
    /// Makes `show` print its arguments, each in angle brackets, and reads the script.
    const char* preparation;
};

const std::vector<Shell> shells = {
    {"bash",
     "bash",
     {"--norc", "--noprofile", "-i"},
     "show() { printf '<%s>' \"$@\"; printf '\\n'; }; eval \"$(tarvik completion bash)\""},
    {"zsh",
     "zsh",
     {"-f", "-i"},
     "show() { printf '<%s>' \"$@\"; printf '\\n' }; autoload -U compinit; compinit -u -D; unsetopt auto_remove_slash; "
     "source <(tarvik completion zsh)"},
    {"zshWithItsLoader",
     "zsh",
     {"-f", "-i"},
     "show() { printf '<%s>' \"$@\"; printf '\\n' }; tarvik completion zsh >../_tarvik; fpath=(.. $fpath); "
     "autoload -U compinit; compinit -u -D; unsetopt auto_remove_slash"},
    {"fish",
     "fish",
     {"--no-config", "-i"},
     "function show; printf '<%s>' $argv; printf '\\n'; end; tarvik completion fish | source"},
};

class ShellCompletion : public testing::TestWithParam<Shell> {
protected:
    void SetUp() override {
        if (test::runProgram("/usr/bin/env", {GetParam().name, "-c", "true"}).status == 127)
            TARVIK_SKIP_BECAUSE(std::string(GetParam().name) + " is not installed");
        test::makeFolder(world.machine.root / "Volumes" / oddName);
        test::makeFolder(world.folder / "here/Big Folder");
    }

    /// What the command is given when this is typed: `<TAB>` stands for that key. The machine is named before it.
    std::string given(std::string typed) const {
        for (std::size_t at = 0; (at = typed.find("<TAB>")) != std::string::npos;) typed.replace(at, 5, "\t");
        const auto path = fmt::format("{}:/usr/bin:/bin", world.command.parent_path().native());
        std::vector<std::string> arguments = {"-i",
                                              "-C",
                                              (world.folder / "here").native(),
                                              "PATH=" + path,
                                              "HOME=" + (world.folder / "here").native(),
                                              "TERM=vt100",
                                              "LC_ALL=C.UTF-8",
                                              GetParam().name};
        arguments.insert(arguments.end(), GetParam().arguments.begin(), GetParam().arguments.end());
        test::RunningProgram shell("/usr/bin/env", arguments, test::RunningProgram::Streams::terminal);
        shell.type(std::string(GetParam().preparation) + "; echo rea''dy\n");
        EXPECT_TRUE(shell.waitForOutput("ready"));
        // The line is given to `show` in the end: Ctrl-A goes to its beginning.
        shell.type(fmt::format("tarvik --root {} {}\x01show \n", world.machine.root.native(), typed));
        shell.type("exit\n");
        const auto output = shell.finish().output;
        const auto begin = output.find("<tarvik>");
        if (begin == std::string::npos) return output;
        const auto words = output.substr(begin, output.find('\n', begin) - begin);
        return words.substr(words.find("<", words.find(world.machine.root.native())));
    }

    CommandWorld world;
};

}  // namespace

TEST_P(ShellCompletion, CompletesVerbsAndOptions) {
    EXPECT_THAT(given("mov<TAB>fol<TAB>x --dr<TAB>D"), HasSubstr("<move><folder><x><--drive><D>"));
}

TEST_P(ShellCompletion, CompletesADriveWithASpace) {
    EXPECT_THAT(given("move app DAW --drive Stu<TAB>"), HasSubstr("<--drive><Studio Drive>"));
    EXPECT_THAT(given("move app DAW --drive=Stu<TAB>"), HasSubstr("<--drive=Studio Drive>"));
}

TEST_P(ShellCompletion, CompletesInsideOfQuotes) {
    EXPECT_THAT(given("move app DAW --drive \"Stu<TAB>"), HasSubstr("<--drive><Studio Drive>"));
    EXPECT_THAT(given("move app DAW --drive 'Zo<TAB>"), HasSubstr(fmt::format("<--drive><{}>", oddName)));
}

TEST_P(ShellCompletion, CompletesANameThatTheShellWouldMisread) {
    EXPECT_THAT(given("move app DAW --drive Zo<TAB>"), HasSubstr(fmt::format("<--drive><{}>", oddName)));
}

TEST_P(ShellCompletion, CompletesApplicationsOfEveryScript) {
    EXPECT_THAT(given("apps 写<TAB>"), HasSubstr("<apps><写真館>"));
    EXPECT_THAT(given("move app Full<TAB>Редак<TAB>"), HasSubstr("<move><app><Full House><Редактор>"));
}

TEST_P(ShellCompletion, CompletesPaths) {
    EXPECT_THAT(given("move folder Big<TAB>"), HasSubstr("<move><folder><Big Folder/>"));
    EXPECT_THAT(given("backup create ./Big<TAB>"), HasSubstr("<backup><create><./Big Folder/>"));
}

INSTANTIATE_TEST_SUITE_P(Real, ShellCompletion, testing::ValuesIn(shells),
                         [](const auto& shell) { return std::string(shell.param.label); });

}  // namespace tarvik
