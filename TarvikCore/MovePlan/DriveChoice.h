#pragma once

#include "Platform/Storage/DriveInfo.h"

#include <string_view>
#include <vector>

/// Picks one drive of a list, by rules that every front shares. Safe on every thread.
namespace tarvik::DriveChoice {

/// The drive that `wanted` names: its mount path, or its volume name to the letter, composed or decomposed. A relative
/// path is taken from the working directory, and links in a path are followed. @throws Failure with the sentence for
/// the user when no drive or more than one fits.
const DriveInfo& named(const std::vector<DriveInfo>& drives, std::string_view wanted);

/// Whether something can be moved to the drive: it can be written to and is not the disk that the system starts from.
bool canBeTarget(const DriveInfo& drive);

/// @throws Failure with the sentence for the user when the drive cannot be a target.
void requireTarget(const DriveInfo& drive);

}  // namespace tarvik::DriveChoice
