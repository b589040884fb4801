#pragma once

#include "Applications/AppEntry.h"
#include "Applications/AppRecord.h"
#include "CommandLine/Grammar/Options.h"
#include "Platform/Machine/Host.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The applications that the command lists, chooses from and measures. All block.
///
/// While it measures, a signal ends the program at once: nothing is being changed.
namespace tarvik::CommandLine {

/// An application by what a move and what an uninstaller would want to know of it.
struct FoundApp {
    AppEntry entry;
    AppRecord record;

    /// Where the bundle stands that a link or a launcher leads to, or that stands behind a linked folder, be it there
    /// or not. Looks at the disk.
    std::optional<fs::path> leadsTo() const;
};

/// Those that can be moved or have been, without sizes, by name.
std::vector<AppEntry> findApps(const Host& host);

/// The one of `entries` that `name` means. @throws WrongUse with the usage of `verb` when none or more than one fits.
const AppEntry& chosenApp(const std::vector<AppEntry>& entries, const std::string& name, Options::Verb verb);

/// Calls `measure` for each index below `count`, several at a time, and shows on a terminal how many are done.
/// `label` is what is counted.
void measureEach(std::size_t count, std::string_view label, Format format,
                 const std::function<void(std::size_t)>& measure);

/// The entries with their sizes and with what else is known of their bundles, in the same order.
std::vector<FoundApp> inspected(const Host& host, const std::vector<AppEntry>& entries, Format format);

}  // namespace tarvik::CommandLine
