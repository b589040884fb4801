#pragma once

#include "CommandLine/RunningProgram.h"
#include "Practice/PracticeMachine.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace tarvik::test {

/// A practice machine and the command that works on it.
struct CommandWorld {
    CommandWorld();
    explicit CommandWorld(const Practice::Options& options);
    /// The same with a copy tool that is a shell script; its arguments are --rsrc, the source and the destination.
    explicit CommandWorld(const std::string& ditto);
    /// Lets the command run this shell script in the place of a tool, and no other tools but such ones.
    void replaceTool(const std::string& name, const std::string& script);
    /// Whether the command runs tools that lie beside it, rather than those that the system has.
    static bool takesMadeTools();

    /// The command's arguments, put behind --root.
    std::vector<std::string> onMachine(const std::vector<std::string>& arguments) const;
    Finished run(const std::vector<std::string>& arguments,
                 RunningProgram::Streams streams = RunningProgram::Streams::pipes) const;
    /// The arguments that move the library to the drive.
    std::vector<std::string> moveOfLibrary(const std::vector<std::string>& more = {}) const;

    /// Expects that the list of this verb is empty: `sentence` for eyes, and no record for programs.
    void expectEmptyList(const std::string& verb, const std::string& sentence) const;

    TemporaryFolder folder;
    Practice::Machine machine;
    fs::path command;
    /// A folder in the home with files, folders and links.
    fs::path library;
    fs::path drive;
    /// Where the library stands after its move.
    fs::path moved;
};

}  // namespace tarvik::test

/// First line of a test that puts scripts in the place of the command's tools.
#define TARVIK_NEEDS_MADE_TOOLS()                                               \
    do {                                                                        \
        if (!::tarvik::test::CommandWorld::takesMadeTools())                    \
            GTEST_SKIP() << "The command runs the tools that this system has."; \
    } while (false)
