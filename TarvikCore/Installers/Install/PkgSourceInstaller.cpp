#include "Installers/Install/PkgSourceInstaller.h"

#include "Installers/Inspection/PackageTrustInspector.h"
#include "Installers/Install/InstallCancellation.h"
#include "Installers/Install/PackageInstaller.h"
#include "Platform/Basics/Failure.h"

#include <fmt/format.h>

namespace tarvik::PkgSourceInstaller {

namespace {

constexpr int untrustedPackage = 10;

}  // namespace

std::vector<std::string> install(const Host& host, const fs::path& source, const InstallTerms& terms) {
    terms.reporter.log(fmt::format("source\tpkg\t{}", source.native()));
    const auto trust = PackageTrustInspector::inspect(host, source);
    if (trust.status != TrustSummary::trusted && !terms.option.allowUntrustedPackages)
        throw Failure("pkg-install", untrustedPackage, "Untrusted package blocked.");
    InstallCancellation::throwIfAsked(terms.cancellation);
    return {PackageInstaller::install(host, source, terms.useRootferry, terms.reporter, terms.cancellation)};
}

}  // namespace tarvik::PkgSourceInstaller
