#pragma once

#include "Installers/Tracking/ReceiptSnapshot.h"
#include "Platform/Machine/Host.h"

#include <string>
#include <vector>

/// Which packages came with an install, by what the machine's installer remembers before and after it.
namespace tarvik::ReceiptScanner {

/// All that `pkgutil --pkgs` lists, however it ends: a tool that fails or is not there gives what it has printed, which
/// is mostly nothing. Waits for it as long as it runs; blocks; any thread; never fails.
ReceiptSnapshot capture(const Host& host);

/// The identifiers that are in `after` alone, sorted. Pure.
std::vector<std::string> added(const ReceiptSnapshot& before, const ReceiptSnapshot& after);

}  // namespace tarvik::ReceiptScanner
