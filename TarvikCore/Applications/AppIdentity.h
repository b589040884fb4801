#pragma once

#include "Platform/Basics/Path.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace tarvik {

struct AppRecord;

/// The four facts by which an application's data is recognised.
struct AppIdentity {
    fs::path bundlePath;
    std::string displayName;
    std::optional<std::string> bundleIdentifier;
    std::optional<std::string> executableName;

    static AppIdentity of(const AppRecord& record);

    bool operator==(const AppIdentity&) const = default;
};

}  // namespace tarvik

template <>
struct std::hash<tarvik::AppIdentity> {
    std::size_t operator()(const tarvik::AppIdentity& identity) const noexcept;
};
