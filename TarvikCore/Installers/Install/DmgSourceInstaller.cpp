#include "Installers/Install/DmgSourceInstaller.h"

#include "Installers/Install/ContainedItemsInstaller.h"
#include "Installers/Install/InstallCancellation.h"
#include "Installers/Opening/DiskImageMounter.h"
#include "Platform/Basics/Failure.h"

#include <fmt/format.h>

namespace tarvik::DmgSourceInstaller {

namespace {

/// An image for as long as it is attached.
class AttachedImage {
public:
    AttachedImage(const Host& host, const fs::path& image)
        : m_host(host), m_mount(DiskImageMounter::attach(host, image)) {}
    ~AttachedImage() {
        ignoringFailure([&] { DiskImageMounter::detach(m_host, m_mount); });
    }
    AttachedImage(const AttachedImage&) = delete;
    AttachedImage& operator=(const AttachedImage&) = delete;

    const std::vector<fs::path>& mountPoints() const { return m_mount.mountPoints; }

private:
    const Host& m_host;
    DiskImageMount m_mount;
};

}  // namespace

std::vector<std::string> install(const Host& host, const fs::path& source, const InstallTerms& terms,
                                 const ItemInstaller& installItem) {
    terms.reporter.log(fmt::format("source\tdmg\t{}", source.native()));
    InstallCancellation::throwIfAsked(terms.cancellation);
    const AttachedImage image(host, source);
    terms.reporter.log(fmt::format("dmg-mounted\t{}", image.mountPoints().size()));
    std::vector<std::string> lines;
    for (const auto& mountPoint : image.mountPoints())
        ContainedItemsInstaller::install(host, mountPoint, installItem, terms.cancellation, lines);
    return lines;
}

}  // namespace tarvik::DmgSourceInstaller
