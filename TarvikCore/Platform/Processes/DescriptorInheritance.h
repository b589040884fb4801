#pragma once

#include <spawn.h>

/// Keeps what this process has open away from the programs that it starts. Each system has its own way.
namespace tarvik::DescriptorInheritance {

/// Makes a child that is spawned with `actions` and `flags` begin with its standard streams alone, even when another
/// thread opens a descriptor at the same moment. Called after standard output and standard error were added to
/// `actions`.
/// @returns 0 or an errno value.
int limitToStandardStreams(posix_spawn_file_actions_t& actions, short& flags);

}  // namespace tarvik::DescriptorInheritance
