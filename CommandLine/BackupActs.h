#pragma once

#include "CommandLine/Grammar/Options.h"
#include "Platform/Machine/Host.h"

/// What the command does with backups on a drive. Both block.
namespace tarvik::CommandLine::BackupActs {

/// Copies the paths to the drive, after a question. @throws WrongUse when no drive fits; Failure with the sentence for
/// the user when the act failed.
void create(const Host& host, const Options& options);
/// Prints the backups on the drive, the newest first. @throws WrongUse when no drive fits.
void list(const Host& host, const Options& options);

}  // namespace tarvik::CommandLine::BackupActs
