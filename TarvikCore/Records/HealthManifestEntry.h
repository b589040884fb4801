#pragma once

#include "Platform/Basics/Path.h"

#include <nlohmann/json_fwd.hpp>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace tarvik {

/// One moved item, as the manifest remembers it.
struct HealthManifestEntry {
    /// Where the item stood, standardized: what tells entries apart.
    fs::path sourcePath;
    /// Where it stands on the drive, standardized.
    fs::path destinationPath;
    std::optional<std::string> bundleIdentifier;
    /// In bytes, measured before the copy.
    std::int64_t sizeBytes = 0;
    /// When the move ended; whole seconds are kept.
    std::chrono::system_clock::time_point movedAt;

    bool operator==(const HealthManifestEntry&) const = default;
};

/// One key a field, of the field's name; an unknown identifier has no key. @throws Failure on reading an entry without
/// a key that it needs, or with a value of the wrong type.
void to_json(nlohmann::json& json, const HealthManifestEntry& entry);
void from_json(const nlohmann::json& json, HealthManifestEntry& entry);

}  // namespace tarvik

template <>
struct std::hash<tarvik::HealthManifestEntry> {
    std::size_t operator()(const tarvik::HealthManifestEntry& entry) const noexcept;
};
