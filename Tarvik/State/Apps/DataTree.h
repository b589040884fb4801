#pragma once

#include "AppData/CategorizedPaths.h"
#include "Platform/Basics/Cancellation.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"
#include "State/Apps/CheckedPaths.h"
#include "State/Apps/DataRow.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace tarvik {

/// What is known of an application's data and what of it is opened: the categories, and the folders whose contents have
/// been read. Looks at no disk; what it is told, others have found out.
class DataTree {
public:
    /// An item as it was found.
    struct Item {
        fs::path path;
        std::optional<std::int64_t> bytes;
        bool isDirectory = false;
        bool isLink = false;
        bool isLinkToDrive = false;
        /// What it is, or what the link leads to: for the counts of files and folders.
        bool countsAsFolder = false;
    };

    /// Takes the data paths anew. Those of which `isMeasured` does not hold have no size yet.
    void setGroups(std::vector<CategorizedPaths> groups, bool isMeasured);
    /// What the data paths are; those that are not among them are not there any more.
    void setItems(std::vector<Item> items);
    void setLoading(const fs::path& folder);
    void setChildren(const fs::path& folder, std::vector<Item> children);
    void setSizes(const fs::path& folder, const std::vector<CheckedPaths::Sized>& sizes);
    void setOpen(const DataRow& row, bool isOpen);
    /// Whether the contents of the folder have been read or are being read.
    bool isKnown(const fs::path& folder) const { return m_folders.contains(folder); }

    /// The lines from top to bottom; data paths in `home` are written with "~". Of a large folder only the first items
    /// are lines.
    std::vector<DataRow> rows(const CheckedPaths& checked, const fs::path& home) const;
    /// The data paths of a category that can be ticked.
    std::vector<CheckedPaths::Sized> tickableIn(const std::string& category) const;
    /// What is in a folder and can be ticked, as far as it is known.
    std::vector<CheckedPaths::Sized> tickableChildren(const fs::path& folder) const;
    /// How many data paths there are.
    std::int64_t count() const;

    /// Reads what the paths are; those where nothing stands are left out. Blocks.
    static std::vector<Item> look(const Host& host, const std::vector<fs::path>& paths);
    /// What is in the folder, in the order of names. Folders are not measured. Blocks.
    static std::vector<Item> list(const Host& host, const fs::path& folder);
    /// The sizes of the folders among `items`. Blocks.
    static std::vector<CheckedPaths::Sized> measure(const Host& host, const std::vector<Item>& items,
                                                    const Cancellation& cancellation);

private:
    struct Folder {
        bool isOpen = true;
        bool isLoading = true;
        std::vector<Item> children;
    };

    DataRow categoryRow(const CategorizedPaths& group, const CheckedPaths& checked) const;
    std::string summaryOf(const CategorizedPaths& group) const;
    CheckedPaths::State stateOf(const CategorizedPaths& group, const CheckedPaths& checked) const;
    Item itemOf(const DataPathSize& path) const;
    bool isGone(const fs::path& path) const;
    void appendRows(std::vector<DataRow>& rows, const Item& item, const std::string& name, int depth,
                    const CheckedPaths& checked, const std::string& category) const;

    std::vector<CategorizedPaths> m_groups;
    bool m_isMeasured = false;
    bool m_isLookedAt = false;
    std::map<fs::path, Item> m_items;
    std::map<fs::path, Folder> m_folders;
    std::set<std::string> m_closedCategories;
};

}  // namespace tarvik
