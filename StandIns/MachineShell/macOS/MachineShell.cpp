#include "MachineShell/MachineShell.h"

#include "Platform/Basics/Failure.h"

namespace tarvik::MachineShell {

int run(const fs::path&, const Command&) {
    // A Mac has no way to show a program another root without the rights, and the consent, of root.
    throw Failure("MachineShell", 1,
                  "A program of a machine in a folder cannot be kept in it on this system, so it does not run.");
}

}  // namespace tarvik::MachineShell
