#include "Installers/Options/InstallerOptionFile.h"

#include <toml++/toml.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>

namespace tarvik::InstallerOptionFile {

namespace {

/// The library makes a table of each part of a key such as a.b.c, one in the other and as many as there are, and takes
/// them apart by recursion: many enough end the program, on a thread with little stack sooner. No key of an option has
/// more than one part. All full stops count, those in texts and in what looks like a comment too, which may stand in a
/// text.
constexpr std::ptrdiff_t mostFullStops = 2000;

// Each reads a key that must be there. @returns whether it is, with a value of that type.

bool reads(const toml::table& table, std::string_view key, std::string& text) {
    const auto* const found = table.get_as<std::string>(key);
    if (found) text = found->get();
    return found != nullptr;
}

bool reads(const toml::table& table, std::string_view key, fs::path& path) {
    std::string text;
    if (!reads(table, key, text)) return false;
    path = std::move(text);
    return true;
}

bool reads(const toml::table& table, std::string_view key, bool& truth) {
    const auto* const found = table.get_as<bool>(key);
    if (found) truth = found->get();
    return found != nullptr;
}

bool reads(const toml::table& table, std::string_view key, std::vector<InstallerKind>& kinds) {
    const auto* const found = table.get_as<toml::array>(key);
    if (!found) return false;
    for (const toml::node& each : *found) {
        const auto* const text = each.as_string();
        const auto kind = text ? installerKindOf(text->get()) : std::nullopt;
        if (!kind) return false;
        kinds.push_back(*kind);
    }
    return true;
}

std::optional<InstallerOption> optionOf(const toml::table& table) {
    InstallerOption option;
    const bool isWhole = reads(table, "id", option.id) && reads(table, "label", option.label) &&
                         reads(table, "strategy", option.strategy) && reads(table, "sourceKinds", option.sourceKinds) &&
                         reads(table, "allowUntrustedPackages", option.allowUntrustedPackages) &&
                         (!table.contains("allowUntrustedScripts") ||
                          reads(table, "allowUntrustedScripts", option.allowUntrustedScripts)) &&
                         reads(table, "externalRootName", option.externalRootName) &&
                         reads(table, "applicationLinkRoot", option.applicationLinkRoot) &&
                         reads(table, "track", option.track) &&
                         reads(table, "relocateSafeApps", option.relocateSafeApps);
    return isWhole ? std::optional(std::move(option)) : std::nullopt;
}

}  // namespace

std::optional<InstallerOption> parsed(std::string_view text) {
    if (std::count(text.begin(), text.end(), '.') > mostFullStops) return std::nullopt;
    try {
        return optionOf(toml::parse(text));
    } catch (const toml::parse_error&) {
        return std::nullopt;
    }
}

}  // namespace tarvik::InstallerOptionFile
