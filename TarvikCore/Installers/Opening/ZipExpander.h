#pragma once

#include "Installers/Opening/OpenedHold.h"
#include "Platform/Machine/Host.h"

/// Unpacks zip archives, whatever they hold.
namespace tarvik::ZipExpander {

/// Expands the archive into a new folder below the host's temporary one, and returns that folder: the caller disposes
/// of it. An archive with entries that would come to lie elsewhere is refused before anything is unpacked. Blocks; any
/// thread.
/// @throws Failure of the domain "zip": the tool's status and words, 1 for an archive that is not safe or that was
/// exchanged or changed meanwhile, or ENOSPC for one that claims more than the volume has room for; FileError when the
/// folder cannot be made. What was unpacked by then is set aside.
fs::path expand(const Host& host, const fs::path& archive);
/// The same, with the folder marked as in use for as long as `hold` lives. Without that another start may clear it away
/// as the leftover of a run that was killed: whoever works on it holds it.
fs::path expand(const Host& host, const fs::path& archive, OpenedHold& hold);

}  // namespace tarvik::ZipExpander
