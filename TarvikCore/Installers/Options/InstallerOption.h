#pragma once

#include "Installers/Inspection/InstallerKind.h"
#include "Platform/Basics/Path.h"

#include <string>
#include <vector>

namespace tarvik {

/// How an installer may be run: one file of the user's, or one that came with the program.
struct InstallerOption {
    /// By which it is found, and by which one file replaces another.
    std::string id;
    /// What the user picks it by; lists are sorted by it.
    std::string label;
    /// A free word for the kind of handling. Nothing depends on it.
    std::string strategy;
    /// What it is meant for. Any option can be used with any source.
    std::vector<InstallerKind> sourceKinds;
    /// Packages may run whose signature is not trusted.
    bool allowUntrustedPackages = false;
    /// Scripts may run at all.
    bool allowUntrustedScripts = false;
    /// The folder on the drive under which, in "Apps", applications are installed.
    std::string externalRootName;
    /// Absolute: where a launcher for an installed application is placed.
    fs::path applicationLinkRoot;
    /// Nothing depends on it.
    bool track = false;
    /// After a package or a script has run, new applications that can safely be moved go to the drive.
    bool relocateSafeApps = false;

    bool operator==(const InstallerOption&) const = default;
};

}  // namespace tarvik
