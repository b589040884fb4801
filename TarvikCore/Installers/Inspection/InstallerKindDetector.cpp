#include "Installers/Inspection/InstallerKindDetector.h"

#include "Installers/Inspection/ContentKindSniffer.h"
#include "Platform/Files/LastComponent.h"
#include "Platform/Text/Text.h"

#include <array>
#include <string>
#include <string_view>
#include <utility>

namespace tarvik::InstallerKindDetector {

namespace {

constexpr std::array<std::pair<std::string_view, InstallerKind>, 9> knownExtensions = {
    {{".app", InstallerKind::app},
     {".dmg", InstallerKind::dmg},
     {".zip", InstallerKind::zip},
     {".pkg", InstallerKind::pkg},
     {".mpkg", InstallerKind::mpkg},
     {".sh", InstallerKind::script},
     {".bash", InstallerKind::script},
     {".command", InstallerKind::script},
     {".zsh", InstallerKind::script}}};

}  // namespace

std::optional<InstallerKind> byName(const fs::path& path) {
    const std::string extension = Text::lowerCased(fs::path(lastComponent(path)).extension().native());
    for (const auto& [known, kind] : knownExtensions)
        if (extension == known) return kind;
    return std::nullopt;
}

InstallerKind detect(const fs::path& path) {
    if (const auto kind = byName(path)) return *kind;
    return ContentKindSniffer::sniff(path).value_or(InstallerKind::unknown);
}

}  // namespace tarvik::InstallerKindDetector
