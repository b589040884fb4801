#pragma once

#include "Installers/Install/InstallTerms.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <string>
#include <vector>

/// Installs a source that is a package.
namespace tarvik::PkgSourceInstaller {

/// Asks the system what it thinks of the package first: one that is not trusted runs only where the option allows it.
/// Gives the line of `PackageInstaller`. Blocks; any thread. @throws Failure of the domain "pkg-install", 10 for a
/// package that is blocked; what `PackageInstaller` throws.
std::vector<std::string> install(const Host& host, const fs::path& source, const InstallTerms& terms);

}  // namespace tarvik::PkgSourceInstaller
