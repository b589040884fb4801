#pragma once

#include "Platform/Basics/Path.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

/// Runs a program of a machine in a folder, so that it cannot reach the machine that runs.
///
/// The program sees a root folder of its own that it cannot change, as the system's volume of a Mac: in it the folders
/// of the machine (/Applications, /Library, /Users, /Volumes, /private and what else it has), once more all of them at
/// the path that the machine's folder really has, /usr/local of the machine, and, for reading only, the programs of
/// this system and the stand-ins. There is an empty /tmp that goes with the program, and no network, no other process
/// and no device but those like /dev/null. What it leaves running is ended with it, and nothing can be typed into it.
/// Its rights as root go no further than the files that it sees.
namespace tarvik::MachineShell {

struct Command {
    /// The first names the program: a path, or a name that is looked for as a Mac's root would.
    std::vector<std::string> arguments;
    /// As the program sees it. Where it is not there, the program begins in "/".
    fs::path folder = "/";
    /// Beyond PATH and HOME.
    std::map<std::string, std::string> environment;
    /// Files and folders of this system that the program reads, at their own paths where that is possible.
    std::vector<fs::path> shown;
    /// Where its output and its errors go; else where this program's go.
    std::optional<int> output;
    /// Whether it runs as root in its own eyes, whoever runs this.
    bool asRoot = true;
};

/// The status of a program that is not there.
inline constexpr int notFound = 127;

/// Runs it on the machine at `root`, a real path, and waits for its end. @returns its exit status, `notFound` when it
/// is not there, 126 when it cannot be started, 128 and the number of the signal that ended it. Ending this process
/// ends it.
/// @throws Failure where this system cannot keep a program in a folder: nothing has run then. One thread, and no other.
int run(const fs::path& root, const Command& command);

}  // namespace tarvik::MachineShell
