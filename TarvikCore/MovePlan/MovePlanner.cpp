#include "MovePlan/MovePlanner.h"

#include "Discovery/AppBundleScanRoots.h"
#include "MovePlan/MoveDestination.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Platform/Storage/DriveScanner.h"
#include "Platform/Storage/SizingService.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <set>
#include <string>
#include <tuple>
#include <unordered_set>
#include <utility>

namespace tarvik::MovePlanner {

namespace {

using Roots = std::vector<fs::path>;

/// The folders at which the search for a link above an item ends.
Roots standardizedRoots(const Host& host) {
    Roots roots = AppBundleScanRoots::standardApplicationRoots(host, false);
    for (fs::path& root : roots) root = Files::standardized(root);
    return roots;
}

bool isSymbolicLinkOrInsideOne(const fs::path& path, const Roots& roots) {
    for (fs::path current = Files::standardized(path);; current = current.parent_path()) {
        if (Files::isSymbolicLink(current)) return true;
        if (std::find(roots.begin(), roots.end(), current) != roots.end()) return false;
        if (current.parent_path() == current) return false;
    }
}

bool mayMove(const fs::path& source, const Roots& roots) {
    return Files::exists(source) && !isUnsafePrefsPlist(source) && !isSymbolicLinkOrInsideOne(source, roots);
}

/// As texts: paths are compared component by component, and there may be thousands.
using Places = std::unordered_set<std::string>;

bool hasFolderIn(const Places& places, const fs::path& path) {
    for (fs::path folder = path.parent_path(); folder != folder.parent_path(); folder = folder.parent_path())
        if (places.contains(folder.native())) return true;
    return false;
}

class Plan {
public:
    Plan(const Host& host, const DriveInfo& drive)
        : m_roots(standardizedRoots(host)),
          m_host(host),
          m_apps(AppStorageNames::appsRootOn(drive.mountPath)),
          m_data(AppStorageNames::dataRootOn(drive.mountPath)),
          m_drive(drive),
          m_driveMark(DriveScanner::markOf(host, drive.mountPath).value_or(std::string())) {}

    void addBundle(const AppEntry& entry) {
        const fs::path bundle = Files::standardized(entry.bundlePath);
        for (fs::path folder = bundle.parent_path(); m_foldersOfBundles.insert(folder.native()).second;)
            folder = folder.parent_path();
        add({entry.name, entry.bundlePath, m_apps / bundle.filename(), entry.appSize, true});
    }

    void addData(const AppEntry& entry, const fs::path& path) {
        const fs::path name = Files::standardized(path).filename();
        add({fmt::format("{} — {}", entry.name, name.native()), path,
             MoveDestination::dataDestination(m_host, path, m_data), 0, false});
    }

    /// The jobs of what is left when nothing moves twice.
    std::vector<MoveJob> jobs(const Cancellation& cancellation) const {
        Places sources;
        for (const Item& item : m_items)
            if (!holdsBundle(item)) sources.insert(Files::standardized(item.source));
        std::vector<MoveJob> jobs;
        for (const Item& item : m_items) {
            if (holdsBundle(item) || (!item.isBundle && hasFolderIn(sources, Files::standardized(item.source))))
                continue;
            const auto bytes = item.isBundle ? item.bytes : SizingService::size(m_host, item.source, cancellation);
            jobs.emplace_back(item.label, item.source, item.destination, JobStatus::pending(), bytes, 0);
            jobs.back().driveMark = m_driveMark;
            jobs.back().drive = m_drive;
        }
        return jobs;
    }

private:
    struct Item {
        std::string label;
        fs::path source;
        fs::path destination;
        /// Of a bundle; data is measured when it is sure to move.
        std::int64_t bytes;
        bool isBundle;
    };

    /// Of several for one destination the first: what two applications share moves once.
    void add(Item item) {
        if (mayMove(item.source, m_roots) && m_destinations.insert(item.destination.native()).second &&
            isNew(item.source))
            m_items.push_back(std::move(item));
    }

    /// Whether no other spelling of the path was added. Two hard links are two items.
    bool isNew(const fs::path& source) {
        const auto item = Files::info(source);
        if (!item) return false;
        const std::string name = Text::nameKey(source.filename().native());
        return m_sources.emplace(item->device, item->inode, name).second;
    }

    bool holdsBundle(const Item& item) const {
        return !item.isBundle && m_foldersOfBundles.contains(Files::standardized(item.source));
    }

    const Roots m_roots;
    const Host& m_host;
    const fs::path m_apps;
    const fs::path m_data;
    const DriveInfo m_drive;
    const std::string m_driveMark;
    Places m_destinations;
    /// Volume, number and name of each source.
    std::set<std::tuple<std::uint64_t, std::uint64_t, std::string>> m_sources;
    Places m_foldersOfBundles;
    std::vector<Item> m_items;
};

}  // namespace

std::vector<MoveJob> buildAppJobs(const Host& host, const std::vector<AppEntry>& entries, const DriveInfo& drive,
                                  bool includeData, const Cancellation& cancellation) {
    Plan plan(host, drive);
    for (const AppEntry& entry : entries) {
        plan.addBundle(entry);
        if (!includeData) continue;
        for (const fs::path& path : entry.dataPaths) plan.addData(entry, path);
    }
    return plan.jobs(cancellation);
}

bool isUnsafePrefsPlist(const fs::path& path) {
    const fs::path standardized = Files::standardized(path);
    const std::string folder = standardized.parent_path();
    return standardized.extension() == ".plist" &&
           (folder.ends_with("/Library/Preferences") || folder.ends_with("/Library/Preferences/ByHost"));
}

bool shouldMove(const Host& host, const fs::path& source) {
    return mayMove(source, standardizedRoots(host));
}

}  // namespace tarvik::MovePlanner
