#pragma once

#include "CommandLine/Grammar/Options.h"
#include "Platform/Machine/Host.h"

/// What the command does about launchers that duplicate a real application. Both block.
namespace tarvik::CommandLine::DedupeActs {

/// Prints what was found: for eyes what stays and what goes of each group, for programs every bundle of it. Changes
/// nothing.
void list(const Host& host, Format format);
/// Moves what was found to the Trash, and prints what became of each; asks first. @throws Failure with the number of
/// those that stayed when there are any.
void remove(const Host& host, const Options& options);

}  // namespace tarvik::CommandLine::DedupeActs
