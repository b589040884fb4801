#pragma once

#include "CommandLine/Options.h"
#include "Platform/Host.h"

/// What the command does to move applications.
namespace tarvik::CommandLine::AppMoveActs {

/// Prints what the move of the named applications would do. Measures, so it blocks for as long as that takes; it
/// changes nothing. It ends as the move would: @throws WrongUse when a name or the drive fits nothing; Failure with the
/// sentence for the user when nothing would move or it does not fit on the drive.
void plan(const Host& host, const Options& options);

}  // namespace tarvik::CommandLine::AppMoveActs
