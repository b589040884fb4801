#pragma once

#include "CommandLine/Grammar/Options.h"
#include "Platform/Machine/Host.h"

/// What the command does with one folder.
namespace tarvik::CommandLine::FolderActs {

/// Takes it to a drive once the user has agreed, and prints how that ended. Blocks.
/// @throws WrongUse when no drive fits; Failure with the sentence for the user when the act failed.
void move(const Host& host, const Options& options);

}  // namespace tarvik::CommandLine::FolderActs
