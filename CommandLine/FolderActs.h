#pragma once

#include "CommandLine/Options.h"
#include "Platform/Host.h"

/// What the command does with one folder: takes it to a drive, and brings it back. Both block, and ask first.
namespace tarvik::CommandLine::FolderActs {

/// @throws WrongUse when no drive fits; Failure with the sentence for the user when the act failed.
void move(const Host& host, const Options& options);
void restore(const Host& host, const Options& options);

}  // namespace tarvik::CommandLine::FolderActs
