#pragma once

#include "Practice/PracticeMachine.h"
#include "Practice/TreeWriter.h"

namespace tarvik::Practice {

/// Signs a bundle that has been written, with the signing tool of the machine. Blocks for one run of it.
/// @throws Failure with the words of the tool when it does not sign.
void sign(TreeWriter& writer, const Machine& machine, const fs::path& bundle);

}  // namespace tarvik::Practice
