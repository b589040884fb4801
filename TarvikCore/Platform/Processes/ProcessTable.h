#pragma once

#include "Platform/Basics/Path.h"

#include <cstdint>
#include <string>
#include <sys/types.h>
#include <vector>

/// The processes of this system. Each system has its own way to ask. Every function may be called from any thread.
namespace tarvik::ProcessTable {

struct Process {
    pid_t identifier = 0;
    /// In the system's own count; with the identifier it names one process for good.
    std::uint64_t startTime = 0;
    /// The program that runs, links resolved.
    fs::path executable;
    /// What the program was called with, its name included.
    std::vector<std::string> arguments;
    /// Empty when it is not known.
    fs::path workingFolder;
};

/// The processes whose programs can be told, without this one and the system's first. Processes that have ended but
/// were not waited for have no program.
std::vector<Process> processes();
/// The programs of all processes, whosever they are, as far as `programOf` can tell them.
std::vector<fs::path> programs();
/// Sends a signal to the process that has the identifier and began at that time, and to no other. Does nothing when it
/// has ended, and for this process and the system's first. The check leaves no gap where the system has a handle for a
/// process; elsewhere the identifier would have to be given to another process within an instant.
void send(int signal, pid_t identifier, std::uint64_t startTime);
/// Whether a process may be told to end: neither the system's first nor this one.
bool mayBeTold(pid_t identifier);

/// The process that started it, or has taken it over since; 0 when it has ended.
pid_t parentOf(pid_t identifier);
/// The path of its program, links resolved, or of what it was called by when the system does not tell more; empty when
/// nothing is known.
fs::path programOf(pid_t identifier);
/// This process, its parent, the parent of that one, and so on, without the system's first.
std::vector<pid_t> lineage();

}  // namespace tarvik::ProcessTable
