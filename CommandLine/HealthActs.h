#pragma once

#include "CommandLine/Grammar/Options.h"
#include "Platform/Machine/Host.h"

/// What the command does about the health of everything that was moved. Both block.
namespace tarvik::CommandLine::HealthActs {

/// Checks and prints what was found: for eyes in sections, for programs all of it. Changes nothing. @throws Failure
/// with the number of problems when there are any.
void check(const Host& host, Format format);
/// Checks, and repairs what was found at the paths that the options name, or without any all that has just one repair;
/// asks first. @throws Failure with the sentence for the user when a path has no finding, when a finding needs its
/// repair named, and when not all was repaired.
void repair(const Host& host, const Options& options);

}  // namespace tarvik::CommandLine::HealthActs
