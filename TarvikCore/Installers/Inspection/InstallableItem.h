#pragma once

#include "Installers/Inspection/InstallerKind.h"
#include "Platform/Basics/Path.h"

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace tarvik {

/// One thing that can be installed.
struct InstallableItem {
    /// The bytes of `path`.
    std::string id;
    InstallerKind kind = InstallerKind::unknown;
    /// Absolute.
    fs::path path;
    /// The last component of `path`.
    std::string label;
    /// As `SizingService` measures it.
    std::int64_t sizeBytes = 0;

    bool operator==(const InstallableItem&) const = default;
};

/// One key a field, of the field's name. @throws Failure on reading a record without one of them, or with a value of
/// the wrong type.
void to_json(nlohmann::json& json, const InstallableItem& item);
void from_json(const nlohmann::json& json, InstallableItem& item);

}  // namespace tarvik

template <>
struct std::hash<tarvik::InstallableItem> {
    std::size_t operator()(const tarvik::InstallableItem& item) const noexcept;
};
