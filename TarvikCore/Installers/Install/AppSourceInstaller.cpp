#include "Installers/Install/AppSourceInstaller.h"

#include "Installers/Install/AppInstallEngine.h"

#include <fmt/format.h>

namespace tarvik::AppSourceInstaller {

std::vector<std::string> install(const Host& host, const fs::path& source, const InstallTerms& terms) {
    terms.reporter.log(fmt::format("source\tapp\t{}", source.native()));
    return {AppInstallEngine::install(host, source, terms.option, terms.drive, terms.reporter, terms.cancellation)};
}

}  // namespace tarvik::AppSourceInstaller
