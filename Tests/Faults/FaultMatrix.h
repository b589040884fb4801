#pragma once

#include "Faults/FaultWorld.h"

/// Every changing system call of an act is made to fail, and the program is killed at every one of them. Whatever
/// happens, each item stands whole at home or on the drive, no link or launcher leads to half of it, and the program
/// remembers of each whether it is away; and what a failure tells is what the user finds.
namespace tarvik::test::FaultMatrix {

/// How much of that is tried.
enum class Errors {
    several,  ///< a call fails with each of several errors
    one,      ///< with one, and for good at some of the points only: others take the same ways
};

/// Tries all points; ends at the first at which something is wrong. Prints how many there were. Skips the test where
/// nothing can be traced.
void tryEveryPoint(Subject subject, Act act, Victim victim, Errors errors);

/// Some drivers know neither how to exchange names nor how to rename without replacing.
void expectDoneWithoutSpecialRenames(Act act);

}  // namespace tarvik::test::FaultMatrix
