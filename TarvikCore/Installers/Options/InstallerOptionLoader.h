#pragma once

#include "Installers/Options/InstallerOption.h"
#include "Platform/Machine/Host.h"

#include <optional>
#include <string_view>
#include <vector>

/// Reads the options by which installers may be run: those that came with the program, and the user's own over them.
///
/// An option is a file whose extension is "toml", in any case of letters, at any depth of its folder; hidden ones do
/// not count, and links to folders are not followed. What cannot be read, is larger than 100 KB or is no option
/// (`InstallerOptionFile`) is passed over. Everything is read anew each time. Whether an option may be followed is
/// another question: see `InstallerOptionCheck`. Never fails. Blocks; any thread.
namespace tarvik::InstallerOptionLoader {

/// All options, sorted by their labels as bytes. Of those with one `id` the last counts, as a whole: the user's after
/// the built-in ones, and within one folder by their paths in byte order.
std::vector<InstallerOption> loadAll(const fs::path& userRoot);
/// The same with another folder in the place of the one that came with the program.
std::vector<InstallerOption> loadAll(const fs::path& builtInRoot, const fs::path& userRoot);

/// The option with exactly this `id`, of those that the user of this machine has.
std::optional<InstallerOption> find(const Host& host, std::string_view id);

/// The folder of options that came with the program; empty when there is none.
fs::path builtInRoot();

}  // namespace tarvik::InstallerOptionLoader
