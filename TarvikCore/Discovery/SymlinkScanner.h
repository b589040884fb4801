#pragma once

#include "Discovery/SymlinkEntry.h"
#include "Platform/Basics/Cancellation.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <vector>

/// Lists the links that stand directly in the folders that things are moved from. Hidden ones are left out, and so is
/// what cannot be read. Blocks; any thread; never fails.
namespace tarvik::SymlinkScanner {

/// The folders that are searched when nothing else is said. They need not exist.
std::vector<fs::path> defaultRoots(const Host& host);

/// The links in the roots, which are absolute, by the bytes of their paths; each once, however often its root is named.
/// Nothing is measured: this is as quick as listing the folders.
std::vector<SymlinkEntry> links(const std::vector<fs::path>& roots);

/// The links with the sizes of their targets, measured one after the other: takes as long as what they point at is
/// large. Once it is cancelled, the sizes that are still missing come out too small.
std::vector<SymlinkEntry> measured(const Host& host, std::vector<SymlinkEntry> links,
                                   const Cancellation& cancellation = {});

/// Both in one.
std::vector<SymlinkEntry> scan(const Host& host, const std::vector<fs::path>& roots,
                               const Cancellation& cancellation = {});

}  // namespace tarvik::SymlinkScanner
