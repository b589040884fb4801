#pragma once

#include "Platform/Basics/Path.h"

#include <cerrno>
#include <optional>
#include <string>
#include <vector>

/// The receipts of a machine in a folder. They lie where a Mac keeps them, in private/var/db/receipts, two files for
/// each package:
/// - NAME.plist, a property list with the key `PackageIdentifier`;
/// - NAME.bom, the paths that were installed, a line each, as `lsbom -s` prints a Mac's bill of materials: "." and
///   "./Editor.app" and so on.
namespace tarvik::pkgutil::Receipts {

struct Receipt {
    std::string identifier;
    /// The property list, and the bill beside it, which need not be there.
    fs::path list;
    fs::path bill;
};

/// Those of the machine at `root`, in the order of their files' names. Without a machine there are none; of the machine
/// that runs, which "/" would be, there are none either.
std::vector<Receipt> of(const std::optional<fs::path>& root);

/// The paths in the bill, as they are below the package's own folder: without "." and without "./" before each.
std::vector<std::string> paths(const Receipt& receipt);

/// Why a file of a receipt stays.
struct Refusal {
    fs::path file;
    int errnoValue = EACCES;
};

/// Removes the bill, then the list. @returns what could not be removed.
std::vector<Refusal> forget(const Receipt& receipt);

}  // namespace tarvik::pkgutil::Receipts
