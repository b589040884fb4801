#pragma once

#include "CommandLine/Output/Records.h"
#include "Platform/Machine/Host.h"

/// What the command tells of the links that stand where things are moved from.
namespace tarvik::CommandLine::LinkActs {

/// Prints the links. Measures what they lead to, so it blocks for as long as that takes; it changes nothing.
void list(const Host& host, Format format);

}  // namespace tarvik::CommandLine::LinkActs
