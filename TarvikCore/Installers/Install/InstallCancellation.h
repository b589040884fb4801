#pragma once

#include "Platform/Basics/Cancellation.h"

/// How an install that was asked to stop ends.
namespace tarvik::InstallCancellation {

/// @throws Failure of the domain "install" with the code ECANCELED when it was asked for.
void throwIfAsked(const Cancellation& cancellation);

}  // namespace tarvik::InstallCancellation
