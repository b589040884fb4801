#pragma once

#include "Platform/Basics/Path.h"
#include "State/Lists/RecordListModel.h"
#include "Uninstall/AppUninstallPlan.h"
#include "Uninstall/UninstallCategory.h"

#include <QString>

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace tarvik {

/// A line of the plan that is shown: the head of a category, or below it one thing that may go.
struct UninstallPlanRow {
    enum class Kind { section, candidate };
    enum class Checked { none, some, all };

    Kind kind = Kind::section;
    UninstallCategory category = UninstallCategory::executable;
    Checked checked = Checked::none;
    /// Of a section.
    bool isOpen = false;
    std::int64_t count = 0;
    /// In bytes: of the thing, or the sum of the section.
    std::int64_t sizeBytes = 0;
    /// Of a candidate.
    fs::path path;
    /// The path as a user reads it.
    std::string pathText;
    std::string reason;
    QString iconName;
    bool isPrivileged = false;

    bool operator==(const UninstallPlanRow&) const = default;

    /// The sections in their order, and below each that is open its candidates. `home` is written "~". Pure.
    static std::vector<UninstallPlanRow> list(const AppUninstallPlan& plan, const std::set<std::string>& checked,
                                              const std::set<UninstallCategory>& open, const fs::path& home);
    static std::vector<Role<UninstallPlanRow>> roles();
    static std::string key(const UninstallPlanRow& row);
};

}  // namespace tarvik
