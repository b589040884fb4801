#pragma once

#include "CommandLine/Grammar/Options.h"
#include "Platform/Machine/Host.h"

/// What the command does with the launchers of applications on drives. Both block.
namespace tarvik::CommandLine::LauncherActs {

/// Prints the launchers that stand or are needed, each with its state. Changes nothing.
void list(const Host& host, Format format);
/// Makes the missing ones and mends what can be mended; asks first. Prints what became of each one that was not in
/// order. @throws Failure with the sentence for the user when not all that can be mended was.
void repair(const Host& host, const Options& options);

}  // namespace tarvik::CommandLine::LauncherActs
