#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Files/ListedFolder.h"
#include "Platform/Machine/Host.h"

#include <cstdint>
#include <optional>
#include <set>
#include <utility>

namespace tarvik {

/// What leads to bundles on drives, as it is at one moment: the links in /Applications, in the user's Applications and
/// in folders among those, two deep; and those that moves have left elsewhere. A bundle that none of them leads to is
/// an orphan, for the check and for the repair that trashes it. Any thread.
class InboundLinks {
public:
    /// Lists those folders and looks where each link leads; blocks, and never fails.
    explicit InboundLinks(const Host& host);

    /// Whether one of them leads to the bundle, by its text or by whatever way. A status call.
    bool leadTo(const fs::path& bundle) const;
    /// A folder that cannot be listed, and may hold a link to anything. Nothing when all is known.
    const std::optional<fs::path>& unreadableFolder() const { return m_unreadable; }

private:
    void addFolder(const Host& host, const fs::path& folder, int deeper);
    void addEntries(const Host& host, const fs::path& path, const ListedFolder& folder, int deeper);
    void addLink(const Host& host, const fs::path& link);
    void addMoves(const Host& host);

    /// Where the links lead by their texts, standardized.
    std::set<fs::path> m_targets;
    /// The device and the number of what they lead to.
    std::set<std::pair<std::uint64_t, std::uint64_t>> m_items;
    std::optional<fs::path> m_unreadable;
};

}  // namespace tarvik
