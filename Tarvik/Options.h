#pragma once

#include "Platform/Basics/Path.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tarvik {

/// What the command line of the window asks for.
struct Options {
    std::optional<fs::path> root;
    std::optional<fs::path> home;
    /// Where to save a picture of the window, instead of showing it.
    std::optional<fs::path> picture;
    /// Width and height of the window in points.
    std::optional<std::pair<int, int>> size;
    bool wantsTimeToFirstFrame = false;
    /// See `RefreshMeasurement`.
    bool measuresRefresh = false;
    bool measuresScrolling = false;
    /// See `HealthMeasurement`.
    bool measuresHealth = false;
    /// See `UninstallMeasurement`.
    bool measuresUninstall = false;
    bool wantsVersion = false;
    bool wantsHelp = false;

    /// @throws Failure with one sentence when the arguments, without the program's name, make no sense.
    static Options parse(const std::vector<std::string>& arguments);
    static std::string help();
};

}  // namespace tarvik
