#include "MachineShell/MachineRoot.h"
#include "MachineShell/MachineShell.h"
#include "Platform/Files/Files.h"

#include <cstdio>
#include <exception>
#include <string>
#include <vector>

// Runs a script with the system's own shell, on the machine in the folder that the environment variable TARVIK_ROOT
// names, and so that it sees no other: what it sees is told in `MachineShell`. Without such a machine it runs nothing.
//
//     bash SCRIPT [ARGUMENT...]
//
// A script below the machine's folder is found by its path there and by its path on the machine. What differs from a
// Mac: no option is understood, nothing can be typed, and what the script leaves running ends with it.

namespace {

constexpr int failed = 1;
constexpr int wrongUsage = 2;

}  // namespace

int main(int argc, char** argv) {
    using namespace tarvik;
    if (argc < 2 || std::string(argv[1]).starts_with('-')) {
        std::fputs("Usage: bash SCRIPT [ARGUMENT...]\n", stderr);
        return wrongUsage;
    }
    try {
        const auto root = MachineRoot::ofEnvironment();
        if (!root) {
            std::fputs("bash: Scripts run only on a machine in a folder.\n", stderr);
            return failed;
        }
        const fs::path script = Files::standardized(argv[1]);
        MachineShell::Command command;
        command.arguments = {"/bin/bash", script.native()};
        command.arguments.insert(command.arguments.end(), argv + 2, argv + argc);
        if (const auto folder = MachineRoot::pathInside(*root, Files::standardized("."))) command.folder = *folder;
        if (Files::exists(script)) command.shown = {script};
        command.asRoot = false;
        return MachineShell::run(*root, command);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "bash: %s\n", failure.what());
        return failed;
    }
}
