#include "MachineShell/MachineRoot.h"
#include "MachineShell/MachineShell.h"
#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"
#include "Platform/Processes/ProgramLocation.h"

#include <cerrno>
#include <cstdio>
#include <exception>
#include <string>
#include <unistd.h>
#include <vector>

// Runs a command as root on the machine in the folder that the environment variable TARVIK_ROOT names:
//
//     rootferry COMMAND [ARGUMENT...]
//
// It ends with the command's status, and with 127 when there is none of that name. What a command sees, and that it
// reaches nothing else, is told in `MachineShell`; its root is whoever runs this. `installer` and `bash` are the
// stand-ins of these names, which take care of that themselves. Paths in arguments may begin with the machine's folder,
// or be as on the machine; what they name outside of it can be read and not changed. Without such a machine nothing is
// run.

namespace {

using namespace tarvik;

constexpr int failed = 1;
constexpr int wrongUsage = 2;

/// Becomes the stand-in; comes back only when that cannot be.
int becomeStandIn(const std::string& name, char** arguments) {
    const fs::path program = ProgramLocation::folder() / name;
    ::execv(program.c_str(), arguments);
    const int error = errno;
    std::fprintf(stderr, "rootferry: %s: %s\n", name.c_str(), systemErrorText(error).c_str());
    return error == ENOENT ? MachineShell::notFound : failed;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2 || !*argv[1]) {
        std::fputs("Usage: rootferry COMMAND [ARGUMENT...]\n", stderr);
        return wrongUsage;
    }
    try {
        const auto root = MachineRoot::ofEnvironment();
        if (!root) {
            std::fputs("rootferry: Commands run only on a machine in a folder.\n", stderr);
            return failed;
        }
        const std::string name = argv[1];
        if (name == "installer" || name == "bash") return becomeStandIn(name, argv + 1);
        MachineShell::Command command;
        command.arguments.assign(argv + 1, argv + argc);
        command.environment = {{"USER", "root"}, {"LOGNAME", "root"}};
        if (const auto folder = MachineRoot::pathInside(*root, Files::standardized("."))) command.folder = *folder;
        for (const std::string& argument : command.arguments)
            if (argument.starts_with('/') && Files::exists(argument))
                command.shown.push_back(Files::standardized(argument));
        return MachineShell::run(*root, command);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "rootferry: %s\n", failure.what());
        return failed;
    }
}
