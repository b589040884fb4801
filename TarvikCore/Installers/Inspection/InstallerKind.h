#pragma once

#include <nlohmann/json_fwd.hpp>

#include <optional>
#include <string_view>

namespace tarvik {

/// What a source of an install is. The order is the one in which kinds are listed.
enum class InstallerKind {
    app,      ///< application bundle
    dmg,      ///< disk image
    zip,      ///< zip archive
    pkg,      ///< flat or bundle package
    mpkg,     ///< meta package
    script,   ///< shell script
    unknown,  ///< anything else
};

/// The text that stands for it in records: the enumerator's own name.
std::string_view textOf(InstallerKind kind);
std::optional<InstallerKind> installerKindOf(std::string_view text);

/// As its text. @throws Failure on reading another one.
void to_json(nlohmann::json& json, InstallerKind kind);
void from_json(const nlohmann::json& json, InstallerKind& kind);

}  // namespace tarvik
