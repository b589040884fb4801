#pragma once

#include "CommandLine/Grammar/Options.h"
#include "Platform/Machine/Host.h"

/// What the command does to move applications.
namespace tarvik::CommandLine::AppMoveActs {

/// Prints what the move of the named applications would do. Measures, so it blocks for as long as that takes; it
/// changes nothing. It ends as the move would: @throws WrongUse when a name or the drive fits nothing; Failure with the
/// sentence for the user when nothing would move or it does not fit on the drive.
void plan(const Host& host, const Options& options);

/// Moves the named applications to the drive once the user has agreed, and prints what became of each item. Blocks.
/// @throws as `plan`, and Failure when the answer is no, or when an item could not be moved; the others have been then.
void move(const Host& host, const Options& options);

}  // namespace tarvik::CommandLine::AppMoveActs
