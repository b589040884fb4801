#include "Move/StaleRootRetarget.h"

#include "Platform/AppStorageNames.h"
#include "Platform/Files.h"
#include "Platform/Text.h"

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
