#pragma once

#include "Installers/Opening/ZipHeader.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarvik {

/// Gathers the paths of an archive's entries, in any order, and tells whether some extractor could be led out of the
/// folder by them. Paths that a volume could take for one are one. A path takes no more than a few numbers, so that a
/// million of them are no burden. Pure.
class ZipPaths {
public:
    /// Each name that a reader may take for the entry's counts.
    void add(const ZipHeader& entry);
    /// The same for two headers of one entry, which may differ.
    void add(const ZipHeader& central, const ZipHeader& local);
    /// A local header that tells nothing new of an entry of the same name.
    void addAgain(const ZipHeader& local);

    /// Whether an entry is absolute, climbs, or is neither file, folder nor link; or a path goes through a link of the
    /// archive, or is that of a link and of another entry.
    bool areUnsafe();

private:
    void add(std::string_view name, std::vector<std::uint64_t>* whole);
    void addOwnerOfAttributes(std::string_view name);
    void addFolders(std::string_view path);

    bool m_isUnsafe = false;
    /// Hashes of paths.
    std::vector<std::uint64_t> m_links;
    std::vector<std::uint64_t> m_others;
    std::vector<std::uint64_t> m_folders;
    std::size_t m_mostFolders = 0;
    std::string m_lastFolder;
};

}  // namespace tarvik
