#include "Installers/Inspection/DmgSourceInspector.h"

#include "Installers/Inspection/ContainedItemScanner.h"
#include "Installers/Inspection/ContainedItems.h"
#include "Installers/Opening/DiskImageMounter.h"
#include "Platform/Basics/Failure.h"

#include <iterator>
#include <utility>

namespace tarvik::DmgSourceInspector {

namespace {

/// An attached image, detached at the end of its life.
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
    const DiskImageMount m_mount;
};

}  // namespace

InstallerInspection inspect(const Host& host, const fs::path& image) {
    return ContainedItems::inspection(image, InstallerKind::dmg, TrustSummary::diskImage, [&] {
        const AttachedImage attached(host, image);
        std::vector<InstallableItem> items;
        for (const fs::path& volume : attached.mountPoints()) {
            auto found = ContainedItemScanner::scan(host, volume);
            std::move(found.begin(), found.end(), std::back_inserter(items));
        }
        return items;
    });
}

}  // namespace tarvik::DmgSourceInspector
