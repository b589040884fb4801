#pragma once

#include "Installers/Install/InstallTerms.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <string>
#include <vector>

/// Installs a source that is an application.
namespace tarvik::AppSourceInstaller {

/// Gives the line of `AppInstallEngine`. Blocks; any thread. @throws what that throws.
std::vector<std::string> install(const Host& host, const fs::path& source, const InstallTerms& terms);

}  // namespace tarvik::AppSourceInstaller
