#pragma once

#include "CommandLine/Grammar/Options.h"
#include "Platform/Machine/Host.h"

/// The acts of the command, each from the options to what is printed. All block.
namespace tarvik::CommandLine::Acts {

/// Does what the options ask for and prints it.
/// @throws WrongUse when the options fit nothing on this machine; Failure with the sentence for the user when the act
/// failed.
void perform(const Host& host, const Options& options);

}  // namespace tarvik::CommandLine::Acts
