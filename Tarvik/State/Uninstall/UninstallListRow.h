#pragma once

#include "Applications/AppRecord.h"
#include "State/Lists/RecordListModel.h"
#include "State/Uninstall/UninstallFilter.h"
#include "State/Uninstall/UninstallSort.h"
#include "Uninstall/UninstallGroup.h"

#include <chrono>
#include <set>
#include <string>
#include <variant>
#include <vector>

namespace tarvik {

/// A line of the list of the Uninstall tab: a header, a group of one vendor's applications, or an application.
struct UninstallListRow {
    /// What the user has chosen for the list.
    struct Choice {
        std::string search;
        UninstallFilter filter = UninstallFilter::all;
        UninstallSort sort = UninstallSort::dateNewest;
        std::set<std::string> markedIds;
        std::set<std::string> openGroups;
        /// Whether the applications below the one header of the whole list are to be seen.
        bool isListOpen = true;
    };
    enum class Marked { none, some, all };

    std::variant<std::string, UninstallGroup, AppRecord> content;
    Marked marked = Marked::none;
    /// A group, and the header of the whole list: what is below it can be closed, and is to be seen while it is open.
    bool canClose = false;
    bool isOpen = false;
    /// An application below its group.
    bool isMember = false;

    const std::string* header() const { return std::get_if<std::string>(&content); }
    const UninstallGroup* group() const { return std::get_if<UninstallGroup>(&content); }
    const AppRecord* app() const { return std::get_if<AppRecord>(&content); }

    bool operator==(const UninstallListRow&) const = default;

    /// The applications that the search and the filter leave, in order; what belongs to the system is never among them.
    /// Pure.
    static std::vector<AppRecord> shown(const std::vector<AppRecord>& apps, const Choice& choice,
                                        std::chrono::system_clock::time_point now);
    /// The list of these from top to bottom: a group stands where the first of its members would, and has those of them
    /// that are shown. Pure.
    static std::vector<UninstallListRow> list(const std::vector<AppRecord>& shown,
                                              const std::vector<UninstallGroup>& groups, const Choice& choice);
    /// The header of the range that a size in bytes is in.
    static std::string sizeRange(std::int64_t bytes);

    static std::vector<Role<UninstallListRow>> roles();
    static std::string key(const UninstallListRow& row);
};

}  // namespace tarvik
