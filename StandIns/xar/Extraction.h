#pragma once

#include "Packages/XarArchive.h"
#include "Platform/Basics/Path.h"

#include <string>
#include <vector>

/// Unpacks an archive below a folder, and writes nowhere else.
namespace tarvik::xar::Extraction {

/// All entries, or those that `names` name and what is in them. Nothing is written when an entry of the archive would
/// lie elsewhere, or when there is not enough space.
/// @throws packages::PackageFailure; FileError. What was written by then stays, as with the Mac's tool.
void extract(const packages::XarArchive& archive, const std::vector<std::string>& names, const fs::path& folder);

}  // namespace tarvik::xar::Extraction
