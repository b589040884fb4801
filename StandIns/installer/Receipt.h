#pragma once

#include "Packages/BoundedTree.h"
#include "Packages/Component.h"

#include <string>
#include <vector>

/// What is remembered of an installed package, in private/var/db/receipts, in the form that `pkgutil` reads: a property
/// list, and a bill of materials that is a text, as `lsbom -s` prints a Mac's.
namespace tarvik::installer::Receipt {

bool exists(packages::BoundedTree& tree, const std::string& identifier);

/// `paths` are below the package's own place. @throws PackageFailure; FileError.
void write(packages::BoundedTree& tree, const packages::Component& component, const std::string& fileName,
           std::vector<std::string> paths);

}  // namespace tarvik::installer::Receipt
