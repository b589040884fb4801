#pragma once

#include "CommandLine/Output/Records.h"
#include "Platform/Machine/Host.h"

#include <string>

/// What the command tells of applications. Both measure, so they block for as long as that takes; they change nothing.
namespace tarvik::CommandLine::AppActs {

/// Prints all applications, those that take most space first.
void list(const Host& host, Format format);
/// Prints all about the one that `name` means. @throws WrongUse when none or more than one fits.
void show(const Host& host, const std::string& name, Format format);

}  // namespace tarvik::CommandLine::AppActs
