#include "State/Apps/DataTree.h"

#include "MovePlan/DataTrash.h"
#include "Platform/Files/Files.h"
#include "Platform/Storage/SizingService.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace tarvik {

namespace {

/// More lines than these nobody reads.
constexpr std::size_t mostLines = 500;

DataTree::Item found(const Host& host, const fs::path& path, const Files::ItemInfo& info) {
    DataTree::Item item{.path = path};
    item.isDirectory = info.type == Files::ItemType::folder;
    item.isLink = info.type == Files::ItemType::symbolicLink;
    item.isLinkToDrive = item.isLink && DataTrash::isLinkToDrive(host, path);
    item.countsAsFolder = item.isDirectory;
    if (item.isLink) {
        const auto target = Files::infoFollowingLinks(path);
        item.countsAsFolder = target && target->type == Files::ItemType::folder;
    }
    if (!item.isDirectory) item.bytes = info.allocatedSize;
    return item;
}

std::string category(const CategorizedPaths& group) {
    return std::string(textOf(group.category));
}

}  // namespace

void DataTree::setGroups(std::vector<CategorizedPaths> groups, bool isMeasured) {
    m_groups = std::move(groups);
    m_isMeasured = isMeasured;
}

void DataTree::setItems(std::vector<Item> items) {
    m_isLookedAt = true;
    m_items.clear();
    for (Item& item : items) m_items.emplace(item.path, std::move(item));
}

void DataTree::setLoading(const fs::path& folder) {
    m_folders[folder] = {};
}

void DataTree::setChildren(const fs::path& folder, std::vector<Item> children) {
    Folder& known = m_folders[folder];
    known.isLoading = false;
    known.children = std::move(children);
}

void DataTree::setSizes(const fs::path& folder, const std::vector<CheckedPaths::Sized>& sizes) {
    std::map<fs::path, std::int64_t> bytes;
    for (const auto& sized : sizes) bytes.emplace(sized.path, sized.bytes);
    for (Item& child : m_folders[folder].children) {
        const auto known = bytes.find(child.path);
        if (known != bytes.end()) child.bytes = known->second;
    }
}

void DataTree::setOpen(const DataRow& row, bool isOpen) {
    if (row.kind == DataRow::Kind::category) {
        if (isOpen) {
            m_closedCategories.erase(row.name);
        } else {
            m_closedCategories.insert(row.name);
        }
    } else if (const auto folder = m_folders.find(row.path); folder != m_folders.end()) {
        folder->second.isOpen = isOpen;
    }
}

bool DataTree::isGone(const fs::path& path) const {
    return m_isLookedAt && !m_items.contains(path);
}

DataTree::Item DataTree::itemOf(const DataPathSize& path) const {
    const auto known = m_items.find(path.path);
    Item item = known != m_items.end() ? known->second : Item{.path = path.path};
    item.bytes = m_isMeasured ? std::optional(path.size) : std::nullopt;
    return item;
}

std::string DataTree::summaryOf(const CategorizedPaths& group) const {
    if (!m_isLookedAt) return group.fileFolderSummary();
    std::int64_t files = 0;
    std::int64_t folders = 0;
    for (const DataPathSize& path : group.items)
        if (!isGone(path.path)) ++(itemOf(path).countsAsFolder ? folders : files);
    return fmt::format("{} and {}", Text::counted(files, "file"), Text::counted(folders, "folder"));
}

CheckedPaths::State DataTree::stateOf(const CategorizedPaths& group, const CheckedPaths& checked) const {
    const auto tickable = tickableIn(category(group));
    const auto isInState = [&](CheckedPaths::State state) {
        return std::all_of(tickable.begin(), tickable.end(),
                           [&](const auto& sized) { return checked.stateOf(sized.path) == state; });
    };
    if (isInState(CheckedPaths::State::none)) return CheckedPaths::State::none;
    return isInState(CheckedPaths::State::all) ? CheckedPaths::State::all : CheckedPaths::State::some;
}

DataRow DataTree::categoryRow(const CategorizedPaths& group, const CheckedPaths& checked) const {
    DataRow row{.kind = DataRow::Kind::category, .key = category(group), .name = category(group)};
    row.help = tooltipOf(group.category);
    row.summary = summaryOf(group);
    if (m_isMeasured) row.bytes = group.total();
    row.isDirectory = true;
    row.isOpen = !m_closedCategories.contains(row.name);
    row.isLocked = tickableIn(row.name).empty();
    row.checked = stateOf(group, checked);
    return row;
}

void DataTree::appendRows(std::vector<DataRow>& rows, const Item& item, const std::string& name, int depth,
                          const CheckedPaths& checked, const std::string& categoryName) const {
    const auto folder = m_folders.find(item.path);
    const bool isKnown = folder != m_folders.end();
    DataRow row{.key = categoryName + "\n" + item.path.native(), .name = name, .path = item.path};
    row.bytes = item.bytes;
    row.depth = depth;
    row.isDirectory = item.isDirectory;
    row.isLink = item.isLink;
    row.isLocked = item.isLinkToDrive;
    row.isOpen = isKnown && folder->second.isOpen;
    row.isLoading = row.isOpen && folder->second.isLoading;
    row.checked = checked.stateOf(item.path);
    const bool isOpen = row.isOpen;
    rows.push_back(std::move(row));
    if (!isOpen) return;

    const auto& children = folder->second.children;
    const std::size_t shown = std::min(children.size(), mostLines);
    for (std::size_t i = 0; i < shown; ++i)
        appendRows(rows, children[i], children[i].path.filename().native(), depth + 1, checked, categoryName);
    if (shown == children.size()) return;
    DataRow more{.kind = DataRow::Kind::more, .key = categoryName + "\n" + item.path.native() + "\n"};
    more.name = fmt::format("and {} more", children.size() - shown);
    more.depth = depth + 1;
    rows.push_back(std::move(more));
}

std::vector<DataRow> DataTree::rows(const CheckedPaths& checked, const fs::path& home) const {
    std::vector<DataRow> rows;
    for (const CategorizedPaths& group : m_groups) {
        const auto isShown = [&](const DataPathSize& path) { return !isGone(path.path); };
        if (std::none_of(group.items.begin(), group.items.end(), isShown)) continue;
        rows.push_back(categoryRow(group, checked));
        if (!rows.back().isOpen) continue;
        for (const DataPathSize& path : group.items)
            if (isShown(path)) appendRows(rows, itemOf(path), path.displayPath(home), 1, checked, category(group));
    }
    return rows;
}

std::vector<CheckedPaths::Sized> DataTree::tickableIn(const std::string& categoryName) const {
    std::vector<CheckedPaths::Sized> tickable;
    for (const CategorizedPaths& group : m_groups) {
        if (category(group) != categoryName) continue;
        for (const DataPathSize& path : group.items)
            if (!isGone(path.path) && !itemOf(path).isLinkToDrive) tickable.push_back({path.path, path.size});
    }
    return tickable;
}

std::vector<CheckedPaths::Sized> DataTree::tickableChildren(const fs::path& folder) const {
    std::vector<CheckedPaths::Sized> tickable;
    const auto known = m_folders.find(folder);
    if (known == m_folders.end()) return tickable;
    for (const Item& child : known->second.children)
        if (!child.isLinkToDrive) tickable.push_back({child.path, child.bytes.value_or(0)});
    return tickable;
}

std::int64_t DataTree::count() const {
    std::int64_t sum = 0;
    for (const CategorizedPaths& group : m_groups)
        sum += std::count_if(group.items.begin(), group.items.end(),
                             [this](const DataPathSize& path) { return !isGone(path.path); });
    return sum;
}

std::vector<DataTree::Item> DataTree::look(const Host& host, const std::vector<fs::path>& paths) {
    std::vector<Item> items;
    for (const fs::path& path : paths)
        if (const auto info = Files::info(path)) items.push_back(found(host, path, *info));
    return items;
}

std::vector<DataTree::Item> DataTree::list(const Host& host, const fs::path& folder) {
    std::vector<fs::path> paths;
    // Of a link in its place nothing is read: what it leads to is not the application's.
    if (Files::isFolder(folder))
        for (const std::string& name : Files::names(folder)) paths.push_back(folder / name);
    return look(host, paths);
}

std::vector<CheckedPaths::Sized> DataTree::measure(const Host& host, const std::vector<Item>& items,
                                                   const Cancellation& cancellation) {
    std::vector<CheckedPaths::Sized> sizes;
    for (const Item& item : items) {
        if (cancellation.isCancelled()) break;
        if (item.isDirectory) sizes.push_back({item.path, SizingService::size(host, item.path, cancellation)});
    }
    return sizes;
}

}  // namespace tarvik
