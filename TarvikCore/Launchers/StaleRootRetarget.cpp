#include "Launchers/StaleRootRetarget.h"

#include "Platform/Files/Files.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <string>

namespace tarvik::StaleRootRetarget {

std::optional<fs::path> candidate(const Host&, const fs::path& path) {
    const std::string present = fmt::format("/{}/", AppStorageNames::externalRoot);
    std::string text = path;
    for (const auto legacy : AppStorageNames::legacyExternalRoots)
        text = Text::replacing(text, fmt::format("/{}/", legacy), present);
    if (text == path.native() || !Files::exists(text)) return std::nullopt;
    return text;
}

}  // namespace tarvik::StaleRootRetarget
