#pragma once

#include "Packages/Product.h"
#include "Platform/Basics/Path.h"

/// Packages that are one file: an archive with one package, or with a product of several.
namespace tarvik::packages::FlatPackage {

/// @throws PackageFailure when it is none, or damaged; FileError.
Product open(const fs::path& package);

}  // namespace tarvik::packages::FlatPackage
