#pragma once

#include "Installers/Options/InstallerOption.h"

/// Whether what a user has written into an option may be followed.
namespace tarvik::InstallerOptionCheck {

/// Whoever plans with an option, or runs one, asks this first. An option may only write below the drive, in the folder
/// that `externalRootName` names, and into the folder that `applicationLinkRoot` names: the first must be a name, or
/// names with single slashes between them, and lead nowhere else by "..", the second an absolute path below "/" without
/// "." or "..", which may end with a slash. Neither may hold a control character, which would break the lines of a
/// plan. What stands there on a disk, links for instance, is not looked at. Pure. @throws Failure with one sentence
/// that names the option and the key.
void requireSafe(const InstallerOption& option);

}  // namespace tarvik::InstallerOptionCheck
