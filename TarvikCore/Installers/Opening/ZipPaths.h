#pragma once

#include "Installers/Opening/PathHashes.h"
#include "Installers/Opening/ZipHeader.h"

#include <string>
#include <string_view>

namespace tarvik {

/// Gathers the paths of an archive's entries, in any order, and tells whether some extractor could be led out of the
/// folder by them. Paths that a volume could take for one are one. A path takes no more than a few numbers, and those
/// once, so that a million of them are no burden. Pure.
class ZipPaths {
public:
    /// Each name that a reader may take for the entry's counts.
    void add(const ZipHeader& entry);
    /// The same for two headers of one entry, which may differ.
    void add(const ZipHeader& central, const ZipHeader& local);
    /// A local header that may be of an entry that is added by its central one too: two links of one name are no news
    /// then. A local header hardly ever tells of what kind its entry is; where it does, that counts.
    void addAgain(const ZipHeader& local);

    /// Whether an entry is absolute, climbs, or is neither file, folder nor link; or a path goes through a link of the
    /// archive, or is that of a link and of another entry.
    bool areUnsafe();

private:
    void add(std::string_view name, PathHashes& whole);
    void addOwnerOfAttributes(std::string_view name);
    void addFolders(std::string_view path);

    bool m_isUnsafe = false;
    PathHashes m_links;
    PathHashes m_others;
    /// The same for local headers that were added again.
    PathHashes m_localLinks;
    PathHashes m_localOthers;
    PathHashes m_folders;
    std::string m_lastFolder;
};

}  // namespace tarvik
