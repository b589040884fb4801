#pragma once

#include "Applications/AppEntry.h"
#include "State/Lists/RecordListModel.h"

#include <string>
#include <vector>

namespace tarvik {

/// An application as the window lists it.
struct AppRow {
    AppEntry entry;
    /// Its sizes are not known yet, or are those of before the last refresh.
    bool sizesPending = true;
    bool isSelected = false;
    bool isExpanded = false;
    /// It has been moved, and what its link leads to is not there now: the drive is not connected, for instance.
    bool isAbsent = false;

    bool operator==(const AppRow&) const = default;

    static std::vector<Role<AppRow>> roles();
    /// The bundle's path: two bundles can share an identifier.
    static std::string key(const AppRow& row) { return row.entry.bundlePath.native(); }
};

}  // namespace tarvik
