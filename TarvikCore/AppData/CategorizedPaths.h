#pragma once

#include "AppData/DataPathCategory.h"
#include "Applications/DataPathSize.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tarvik {

struct AppEntry;

/// The data paths of one category.
struct CategorizedPaths {
    DataPathCategory category = DataPathCategory::other;
    /// Largest first.
    std::vector<DataPathSize> items;

    /// In bytes.
    std::int64_t total() const;
    /// "1 item", "3 items".
    std::string fileFolderSummary() const;

    bool operator==(const CategorizedPaths&) const = default;
};

/// The measured data paths of an application by category, in the order in which categories are shown. Paths of one size
/// keep their order.
std::vector<CategorizedPaths> categorizedPaths(const AppEntry& entry);

}  // namespace tarvik
