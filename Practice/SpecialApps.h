#pragma once

#include "Practice/PracticeMachine.h"
#include "Practice/Records.h"
#include "Practice/TreeWriter.h"

namespace tarvik::Practice {

/// Applications of every kind that the rules tell apart, at every place where they are looked for; their data at every
/// place where data is looked for; what an earlier move has left: links, launchers, and what is remembered of
/// them. Links and launchers hold absolute paths, as a move writes them.
void addSpecialApps(TreeWriter& writer, const Machine& machine, Records& records);

}  // namespace tarvik::Practice
