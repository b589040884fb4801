#include "Installers/Sessions/InstallerSessionStatus.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace tarvik {

namespace {

/// In declared order.
constexpr std::array<std::string_view, 3> installerStatusTexts = {"pendingExternalize", "done", "failed"};

}  // namespace

std::string_view textOf(InstallerSessionStatus status) {
    return installerStatusTexts.at(static_cast<std::size_t>(status));
}

std::optional<InstallerSessionStatus> installerSessionStatusOf(std::string_view text) {
    const auto* const found = std::find(installerStatusTexts.begin(), installerStatusTexts.end(), text);
    if (found == installerStatusTexts.end()) return std::nullopt;
    return static_cast<InstallerSessionStatus>(found - installerStatusTexts.begin());
}

}  // namespace tarvik
