#pragma once

#include "CommandLine/Grammar/Options.h"
#include "Platform/Machine/Host.h"

/// The acts around installers. @throws WrongUse, or Failure when the act failed.
namespace tarvik::CommandLine::InstallActs {

/// Tells all about the source.
void inspect(const Host& host, const Options& options);
/// Lists the options for installers.
void list(const Host& host, Format format);
/// Shows what an install would do.
void plan(const Host& host, const Options& options);

}  // namespace tarvik::CommandLine::InstallActs
