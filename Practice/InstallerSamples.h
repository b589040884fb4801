#pragma once

#include "Practice/PracticeMachine.h"
#include "Practice/TreeWriter.h"

namespace tarvik::Practice {

/// Sources of installs of every kind, in the machine's folder Installers: an image of an application, one with two
/// volumes, a zip archive, a package that the machine trusts and one that nobody has signed, a product of two packages,
/// a meta package, and two scripts. @throws FileError, Failure
void addInstallerSamples(TreeWriter& writer, const Machine& machine);

}  // namespace tarvik::Practice
