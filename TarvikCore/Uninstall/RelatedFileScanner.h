#pragma once

#include "Applications/AppRecord.h"
#include "Platform/Basics/Cancellation.h"
#include "Platform/Machine/Host.h"
#include "Uninstall/UninstallCandidate.h"

#include <vector>

/// Finds what belongs to an application, and says why. Nothing is matched by likeness: a path belongs to it only when
/// the exact identifier, name or slug is a whole component of it, in one of a fixed set of places.
namespace tarvik::RelatedFileScanner {

/// Whether the candidates are measured too, which takes as long as reading all their folders.
enum class Sizes { measured, leftOut };

/// Each path once, the bundle first; of two that find a path, the first one tells what it is. Reads only; asks
/// `pkgutil` for receipts. Blocks; any thread; never fails: what cannot be read gives no candidates. A cancelled scan
/// gives what it has found so far.
std::vector<UninstallCandidate> scan(const Host& host, const AppRecord& app, Sizes sizes = Sizes::measured,
                                     const Cancellation& cancellation = {});

/// The same without the receipts, which take no room: no tool is asked.
std::vector<UninstallCandidate> onDisk(const Host& host, const AppRecord& app, Sizes sizes = Sizes::measured,
                                       const Cancellation& cancellation = {});

}  // namespace tarvik::RelatedFileScanner
