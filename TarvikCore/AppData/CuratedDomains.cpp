#include "AppData/CuratedDomains.h"

#include "Platform/Text/Text.h"

#include <map>
#include <utility>
#include <vector>

namespace tarvik {

namespace {

OwnedPaths folders(std::vector<std::string> paths) {
    return {.excludesDotfileAndNodeCaches = false, .extraPaths = std::move(paths)};
}

/// Their dotfiles belong to a command-line program of the same name, which lives on without them.
OwnedPaths noDotfiles() {
    return {.excludesDotfileAndNodeCaches = true, .extraPaths = {}};
}

/// By bundle identifier in lower case.
const std::map<std::string, OwnedPaths>& table() {
    static const std::map<std::string, OwnedPaths> entries = {
        {"com.anthropic.claudefordesktop", noDotfiles()},
        {"com.anthropic.claude-code-url-handler", noDotfiles()},
        {"com.apple.logic10",
         folders({"/Library/Application Support/Logic", "/Library/Application Support/GarageBand"})},
        {"com.apple.finalcut", folders({"/Library/Application Support/ProApps"})},
        {"com.adobe.photoshop", folders({"/Library/Application Support/Adobe"})},
        {"com.arobas-music.guitarpro8", folders({"/Library/Application Support/Arobas Music"})},
        {"com.image-line.flstudio", folders({"/Library/Application Support/Image-Line"})},
        {"com.steinberg.spectralayers12", folders({"/Library/Application Support/Steinberg"})},
    };
    return entries;
}

}  // namespace

const OwnedPaths* CuratedDomains::entry(const std::optional<std::string>& bundleIdentifier) {
    if (!bundleIdentifier) return nullptr;
    const auto found = table().find(Text::lowerCased(*bundleIdentifier));
    return found == table().end() ? nullptr : &found->second;
}

}  // namespace tarvik
