#include "Installers/Inspection/ZipSourceInspector.h"

#include "Copying/FileStash.h"
#include "Installers/Inspection/ContainedItemScanner.h"
#include "Installers/Inspection/ContainedItems.h"
#include "Installers/Opening/OpenedHold.h"
#include "Installers/Opening/ZipExpander.h"
#include "Platform/Basics/Failure.h"

namespace tarvik::ZipSourceInspector {

namespace {

/// An expanded archive, set aside at the end of its life.
class ExpandedArchive {
public:
    ExpandedArchive(const Host& host, const fs::path& archive)
        : m_host(host), m_folder(ZipExpander::expand(host, archive, m_hold)) {}
    ~ExpandedArchive() {
        ignoringFailure([&] { FileStash::moveAside(m_host, m_folder, "zip-inspect"); });
    }
    ExpandedArchive(const ExpandedArchive&) = delete;
    ExpandedArchive& operator=(const ExpandedArchive&) = delete;

    const fs::path& folder() const { return m_folder; }

private:
    const Host& m_host;
    OpenedHold m_hold;
    const fs::path m_folder;
};

}  // namespace

InstallerInspection inspect(const Host& host, const fs::path& archive) {
    return ContainedItems::inspection(archive, InstallerKind::zip, TrustSummary::zipArchive, [&] {
        const ExpandedArchive expanded(host, archive);
        return ContainedItemScanner::scan(host, expanded.folder());
    });
}

}  // namespace tarvik::ZipSourceInspector
