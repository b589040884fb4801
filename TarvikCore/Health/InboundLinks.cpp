#include "Health/InboundLinks.h"

#include "Discovery/AppBundleEnumerator.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/SilentVolumes.h"
#include "Platform/Machine/SystemFolders.h"
#include "Records/HealthManifest.h"

#include <cstddef>

namespace tarvik {

namespace {

/// Folders as Utilities, and folders in those.
constexpr int deepest = 2;

}  // namespace

InboundLinks::InboundLinks(const Host& host) {
    addFolder(host, SystemFolders::applications(host), deepest);
    addFolder(host, host.home / "Applications", deepest);
    addMoves(host);
}

bool InboundLinks::leadTo(const fs::path& bundle) const {
    if (m_targets.contains(Files::standardized(bundle))) return true;
    // One that is a link itself is on the way of others.
    const auto info = Files::infoFollowingLinks(bundle);
    return info && m_items.contains({info->device, info->inode});
}

void InboundLinks::addFolder(const Host& host, const fs::path& folder, int deeper) {
    if (SilentVolumes::hold(host, folder)) {
        m_unreadable = folder;
        return;
    }
    if (const auto listed = ListedFolder::at(folder))
        addEntries(host, folder, *listed, deeper);
    else if (!Files::isMissing(folder))
        m_unreadable = folder;
}

void InboundLinks::addEntries(const Host& host, const fs::path& path, const ListedFolder& folder, int deeper) {
    for (std::size_t index = 0; index < folder.size(); ++index) {
        const Files::ItemType type = folder.type(index);
        if (type == Files::ItemType::symbolicLink)
            addLink(host, path / folder.name(index));
        else if (type == Files::ItemType::folder && deeper > 0 &&
                 !AppBundleEnumerator::isBundleName(folder.name(index)))
            addFolder(host, path / folder.name(index), deeper - 1);
    }
}

void InboundLinks::addLink(const Host& host, const fs::path& link) {
    const auto text = Files::linkText(link);
    if (!text) return;
    m_targets.insert(Files::standardized(link.parent_path() / *text));
    if (SilentVolumes::hold(host, link)) return;
    if (const auto info = Files::infoFollowingLinks(link)) m_items.insert({info->device, info->inode});
}

void InboundLinks::addMoves(const Host& host) {
    for (const HealthManifestEntry& entry : HealthManifest::load(host)) {
        if (SilentVolumes::hold(host, entry.sourcePath.parent_path()))
            m_targets.insert(entry.destinationPath);  // Its link cannot be looked at, and may be there.
        else
            addLink(host, entry.sourcePath);
    }
}

}  // namespace tarvik
