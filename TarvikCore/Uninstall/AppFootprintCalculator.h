#pragma once

#include "Applications/AppRecord.h"
#include "Platform/Basics/Cancellation.h"
#include "Platform/Machine/Host.h"

#include <cstdint>

/// What an application takes with everything that belongs to it.
namespace tarvik::AppFootprintCalculator {

/// In bytes. Blocks; any thread; never fails. A cancelled measurement gives what it has counted so far.
std::int64_t footprint(const Host& host, const AppRecord& app, const Cancellation& cancellation = {});

/// The record with the size of its bundle, or of what a launcher stands for; with its footprint when the application
/// came with another one. Blocks; any thread; never fails. A cancelled measurement gives what it has counted so far.
AppRecord measured(const Host& host, const AppRecord& app, const Cancellation& cancellation = {});

}  // namespace tarvik::AppFootprintCalculator
