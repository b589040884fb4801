#pragma once

#include "Practice/PracticeMachine.h"
#include "Practice/Records.h"
#include "Practice/TreeWriter.h"

namespace tarvik::Practice {

/// What was moved and is not as the move left it: with what the special applications have, one finding of each kind
/// that the health check tells apart; and some that are well, with a signature and without. @throws Failure
void addDriftedItems(TreeWriter& writer, const Machine& machine, Records& records);

}  // namespace tarvik::Practice
