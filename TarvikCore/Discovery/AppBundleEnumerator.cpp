#include "Discovery/AppBundleEnumerator.h"

#include "Platform/Files/Files.h"
#include "Platform/Files/ListedFolder.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <optional>
#include <utility>

namespace tarvik::AppBundleEnumerator {

namespace {

/// Takes each bundle as it is found; false ends the walk.
using Visitor = std::function<bool(fs::path bundle)>;

/// A link whose text steps back over something that is missing leads nowhere for the system, but still to a folder by
/// its text.
std::optional<ListedFolder> listedRoot(const fs::path& root) {
    auto folder = ListedFolder::at(root);
    if (folder) return folder;
    const auto target = Files::linkText(root);
    return target ? ListedFolder::at(Files::standardized(root.parent_path() / *target)) : std::nullopt;
}

class Walk {
public:
    Walk(int maxDepth, Visitor visitor) : m_maxDepth(maxDepth), m_visitor(std::move(visitor)) {}

    /// @returns false when the visitor has ended the walk.
    bool through(const ListedFolder& folder, const fs::path& path) {
        m_trail.push_back(&folder);
        bool goesOn = true;
        for (std::size_t index = 0; goesOn && index < folder.size(); ++index)
            goesOn = isBundleName(folder.name(index)) ? m_visitor(path / folder.name(index))
                                                      : intoFolder(folder, index, path);
        m_trail.pop_back();
        return goesOn;
    }

private:
    bool intoFolder(const ListedFolder& parent, std::size_t index, const fs::path& parentPath) {
        if (static_cast<int>(m_trail.size()) > m_maxDepth) return true;
        const Files::ItemType type = parent.type(index);
        const bool isLink = type == Files::ItemType::symbolicLink;
        if (!isLink && type != Files::ItemType::folder) return true;
        const auto folder = ListedFolder::in(parent.handle(), parent.name(index));
        if (!folder || (isLink && isOnTrail(*folder))) return true;
        return through(*folder, parentPath / parent.name(index));
    }

    bool isOnTrail(const ListedFolder& folder) const {
        return std::any_of(m_trail.begin(), m_trail.end(),
                           [&](const ListedFolder* above) { return above->isSameAs(folder); });
    }

    int m_maxDepth;
    Visitor m_visitor;
    /// The folders that the walk is in, the root first.
    std::vector<const ListedFolder*> m_trail;
};

void walk(const fs::path& root, int maxDepth, Visitor visitor) {
    if (maxDepth < 0) return;
    if (const auto folder = listedRoot(root)) Walk(maxDepth, std::move(visitor)).through(*folder, root);
}

}  // namespace

bool isBundleName(std::string_view name) {
    return name.ends_with(".app");
}

std::vector<fs::path> bundles(const fs::path& root, int maxDepth) {
    std::vector<fs::path> found;
    walk(root, maxDepth, [&](fs::path bundle) {
        found.push_back(std::move(bundle));
        return true;
    });
    return found;
}

bool holdsBundle(const fs::path& root, int maxDepth) {
    bool holds = false;
    walk(root, maxDepth, [&](const fs::path&) {
        holds = true;
        return false;
    });
    return holds;
}

}  // namespace tarvik::AppBundleEnumerator
