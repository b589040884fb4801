#pragma once

#include "Platform/Basics/Path.h"

#include <sys/stat.h>

/// Keeps a copy from ending up in what is copied.
namespace tarvik::ditto::SelfCopy {

/// Refuses a destination that is the source, or lies inside it, by whatever path it is reached. Makes nothing. `status`
/// is the source's. @throws ItemError
void refuse(const fs::path& source, const struct stat& status, const fs::path& destination);

}  // namespace tarvik::ditto::SelfCopy
