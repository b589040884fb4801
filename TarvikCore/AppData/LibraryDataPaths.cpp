#include "AppData/LibraryDataPaths.h"

#include "AppData/DataName.h"
#include "Platform/Machine/SystemFolders.h"

#include <initializer_list>

namespace tarvik::LibraryDataPaths {

namespace {

/// What stands before and after the name.
struct Pattern {
    std::string_view folder;
    std::string_view ending = {};
};

std::vector<fs::path> filledIn(const fs::path& library, std::initializer_list<Pattern> patterns,
                               std::string_view name) {
    std::vector<fs::path> paths;
    if (!DataName::isUsable(name)) return paths;
    for (const Pattern& pattern : patterns)
        paths.push_back(library / pattern.folder / std::string(name).append(pattern.ending));
    return paths;
}

}  // namespace

std::vector<fs::path> byBundleId(const fs::path& home, const std::optional<std::string>& bundleIdentifier) {
    return filledIn(home / "Library", {{"HTTPStorages"}, {"Caches"}, {"WebKit"}, {"Preferences", ".plist"}},
                    bundleIdentifier.value_or(""));
}

std::vector<fs::path> byDisplayName(const fs::path& home, std::string_view name) {
    return filledIn(home / "Library",
                    {{"Application Support"}, {"Caches"}, {"Logs"}, {"Saved Application State", ".savedState"}}, name);
}

std::vector<fs::path> supplementalByDisplayName(const fs::path& home, std::string_view name) {
    return filledIn(home / "Library", {{"Caches"}, {"Logs"}, {"Saved Application State", ".savedState"}}, name);
}

std::vector<fs::path> systemByBundleId(const Host& host, const std::optional<std::string>& bundleIdentifier) {
    return filledIn(SystemFolders::library(host),
                    {{"Application Support"}, {"Caches"}, {"Preferences", ".plist"}, {"Logs"}},
                    bundleIdentifier.value_or(""));
}

std::vector<fs::path> systemByDisplayName(const Host& host, std::string_view name) {
    return filledIn(SystemFolders::library(host), {{"Application Support"}, {"Caches"}, {"Logs"}}, name);
}

}  // namespace tarvik::LibraryDataPaths
