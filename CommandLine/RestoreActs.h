#pragma once

#include "CommandLine/Grammar/Options.h"
#include "Platform/Machine/Host.h"

/// What the command does to bring things back.
namespace tarvik::CommandLine::RestoreActs {

/// Brings back what the named links, launchers and applications lead to once the user has agreed, and prints what
/// became of each. A name with a slash, or at which something stands, is a path; every other one is that of an
/// application, which comes back with the folder that was moved when it stands in one. Blocks.
/// @throws WrongUse when a name fits no application; Failure with the sentence for the user when nothing can come back,
/// when the answer is no, or when an item did not come back; the others have then.
void restore(const Host& host, const Options& options);

}  // namespace tarvik::CommandLine::RestoreActs
