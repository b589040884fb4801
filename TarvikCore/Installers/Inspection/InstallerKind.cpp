#include "Installers/Inspection/InstallerKind.h"

#include "Platform/Text/Json.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace tarvik {

namespace {

/// In declared order.
constexpr std::array<std::string_view, 7> installerKindTexts = {"app",  "dmg",    "zip",    "pkg",
                                                                "mpkg", "script", "unknown"};

}  // namespace

std::string_view textOf(InstallerKind kind) {
    return installerKindTexts.at(static_cast<std::size_t>(kind));
}

std::optional<InstallerKind> installerKindOf(std::string_view text) {
    const auto* const found = std::find(installerKindTexts.begin(), installerKindTexts.end(), text);
    if (found == installerKindTexts.end()) return std::nullopt;
    return static_cast<InstallerKind>(found - installerKindTexts.begin());
}

void to_json(nlohmann::json& json, InstallerKind kind) {
    json = std::string(textOf(kind));
}

void from_json(const nlohmann::json& json, InstallerKind& kind) {
    const auto known = installerKindOf(Json::decoded<std::string>(json));
    if (!known) Json::refuse("a kind of source");
    kind = *known;
}

}  // namespace tarvik
