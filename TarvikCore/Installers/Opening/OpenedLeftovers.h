#pragma once

#include "Platform/Machine/Host.h"

/// What runs that were killed have left open: folders into which archives were unpacked, and attached images.
namespace tarvik::OpenedLeftovers {

/// Clears what dead runs have left in the host's temporary folder: folders go to the Trash, images are detached, as
/// long as they are what was attached then. What a run has open is locked, and stays; so does what somebody else has
/// attached. Whoever opens something does this first. Blocks; never fails; any thread.
void sweep(const Host& host) noexcept;

}  // namespace tarvik::OpenedLeftovers
