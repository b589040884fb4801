#pragma once

#include "Installers/Inspection/InstallableItem.h"
#include "Installers/Inspection/InstallerKind.h"
#include "Installers/Inspection/TrustSummary.h"
#include "Platform/Basics/Path.h"

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace tarvik {

/// What a look at a source has told.
struct InstallerInspection {
    /// Absolute.
    fs::path sourcePath;
    InstallerKind kind = InstallerKind::unknown;
    /// What it offers.
    std::vector<InstallableItem> items;
    /// What the user should read first.
    std::vector<std::string> warnings;
    TrustSummary trust;

    bool operator==(const InstallerInspection&) const = default;
};

/// One key a field, of the field's name. @throws Failure on reading a record without one of them, or with a value of
/// the wrong type.
void to_json(nlohmann::json& json, const InstallerInspection& inspection);
void from_json(const nlohmann::json& json, InstallerInspection& inspection);

}  // namespace tarvik

template <>
struct std::hash<tarvik::InstallerInspection> {
    std::size_t operator()(const tarvik::InstallerInspection& inspection) const noexcept;
};
