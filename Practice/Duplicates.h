#pragma once

#include "Practice/PracticeMachine.h"
#include "Practice/TreeWriter.h"

namespace tarvik::Practice {

/// Launchers that an older version has left in a folder of the user's applications: some duplicate an application that
/// was installed anew, and some look much like these but must stay.
void addDuplicates(TreeWriter& writer, const Machine& machine);

}  // namespace tarvik::Practice
