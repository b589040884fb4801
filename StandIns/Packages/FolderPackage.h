#pragma once

#include "Packages/Product.h"
#include "Platform/Basics/Path.h"

/// Packages that are folders, as they were made before there were flat ones: `Contents/Info.plist` tells of them, the
/// payload is `Contents/Archive.pax.gz`, the scripts are in `Contents/Resources`. A meta package names others, which
/// lie inside of it; those that lie elsewhere are not installed.
namespace tarvik::packages::FolderPackage {

/// @throws PackageFailure when it is none, damaged, or reaches outside of itself; FileError.
Product open(const fs::path& package);

}  // namespace tarvik::packages::FolderPackage
