#pragma once

#include "Platform/Basics/Path.h"

/// A path as a user has written it.
namespace tarvik::WrittenPath {

/// The standardized path that `written` means. ".." behind a link leads out of the folder that the link leads to, not
/// of the one that the link stands in: what could be taken for another place than the system takes it for is refused.
/// Names come as the volume keeps them (`StoredSpelling`), where it takes what was typed for them, and a place on a
/// Mac's data volume by its usual path (`Firmlinks`). Blocks for a listing of each folder on the way.
/// @throws Failure with the sentence for the user when it could, or when ".." stands behind a link that leads nowhere.
fs::path meant(const fs::path& written);

/// A standardized path in the spelling that scans and listings give. Blocks as `meant`; never fails.
fs::path asStored(const fs::path& path);

}  // namespace tarvik::WrittenPath
