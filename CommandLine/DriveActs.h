#pragma once

#include "CommandLine/Grammar/Options.h"
#include "Platform/Machine/Host.h"
#include "Platform/Storage/DriveInfo.h"

#include <string>

/// What the command does with drives. All block.
namespace tarvik::CommandLine::DriveActs {

/// Prints the drives.
void list(const Host& host, Format format);

/// The drive that `wanted` names. @throws WrongUse with the usage of `verb` when no drive or more than one fits.
DriveInfo named(const Host& host, const std::string& wanted, Options::Verb verb);

/// The drive that `wanted` names, as the target of a move. @throws WrongUse with the usage of `verb` when no drive or
/// more than one fits; Failure with the sentence for the user when the drive cannot be a target.
DriveInfo chosen(const Host& host, const std::string& wanted, Options::Verb verb);

}  // namespace tarvik::CommandLine::DriveActs
