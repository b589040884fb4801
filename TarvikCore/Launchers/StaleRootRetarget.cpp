#include "Launchers/StaleRootRetarget.h"

#include "Platform/Files/Files.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Platform/Machine/SilentVolumes.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <string>

namespace tarvik::StaleRootRetarget {

std::optional<fs::path> candidate(const Host& host, const fs::path& path) {
    const std::string present = fmt::format("/{}/", AppStorageNames::externalRoot);
    std::string text = path;
    for (const auto legacy : AppStorageNames::legacyExternalRoots)
        text = Text::replacing(text, fmt::format("/{}/", legacy), present);
    if (text == path.native()) return std::nullopt;
    // Few paths come as far as this, so that the drive can be asked each time.
    if (SilentVolumes::hold(SilentVolumes::noted(host), text) || !Files::exists(text)) return std::nullopt;
    return text;
}

}  // namespace tarvik::StaleRootRetarget
