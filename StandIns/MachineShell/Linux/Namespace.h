#pragma once

#include <sys/types.h>

/// A process in namespaces of its own, as namespaces(7) tells: users, mounts, processes, network and the rest.
namespace tarvik::MachineShell::Namespace {

/// As fork(2), but the child is the first process of new namespaces, and ends when this thread ends. It has no user
/// until `mapUsers`. -1, and errno, where the system grants none.
pid_t fork();

/// Gives the child of `fork` its users: all of them where the caller may, so that owners mean the same; else the caller
/// alone, as root or as itself. False, and errno, when the system refuses.
bool mapUsers(pid_t child, bool asRoot);

/// Gives up for good every right of root but those over files and processes that the caller sees. False, and errno,
/// when the system refuses.
bool dropRights();

}  // namespace tarvik::MachineShell::Namespace
