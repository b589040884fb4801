#pragma once

#include "Practice/PracticeMachine.h"
#include "Practice/TreeWriter.h"

namespace tarvik::Practice {

/// The applications of one vendor, for the uninstaller: Loom, with something at every place where things of an
/// application are looked for, receipts and a daemon among them; one whose identifier begins with Loom's; one with
/// little data and one with none.
void addUninstallSamples(TreeWriter& writer, const Machine& machine);

}  // namespace tarvik::Practice
