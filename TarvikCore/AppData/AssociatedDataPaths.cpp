#include "AppData/AssociatedDataPaths.h"

#include "AppData/CuratedDomains.h"
#include "AppData/LibraryDataPaths.h"
#include "AppData/Slug.h"
#include "AppData/SlugDataEligibility.h"
#include "AppData/SlugDataPaths.h"
#include "AppData/SupplementalInstall.h"
#include "Platform/Files/ExistingPaths.h"
#include "Platform/Machine/SystemFolders.h"

#include <iterator>
#include <string>
#include <utility>

namespace tarvik::AssociatedDataPaths {

namespace {

void append(std::vector<fs::path>& paths, std::vector<fs::path> more) {
    paths.insert(paths.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
}

std::vector<fs::path> curatedPaths(const Host& host, const AppIdentity& identity) {
    std::vector<fs::path> paths;
    if (const OwnedPaths* const known = CuratedDomains::entry(identity.bundleIdentifier))
        for (const std::string& text : known->extraPaths) {
            const fs::path path = text;
            paths.push_back(path.is_absolute() ? SystemFolders::below(host, path) : host.home / path);
        }
    return paths;
}

}  // namespace

std::vector<fs::path> locate(const Host& host, const AppIdentity& identity) {
    const bool isSupplemental = SupplementalInstall::matches(host, identity.bundlePath);
    const std::string& name = identity.displayName;

    std::vector<fs::path> paths = LibraryDataPaths::byBundleId(host.home, identity.bundleIdentifier);
    append(paths, isSupplemental ? LibraryDataPaths::supplementalByDisplayName(host.home, name)
                                 : LibraryDataPaths::byDisplayName(host.home, name));
    append(paths, LibraryDataPaths::systemByBundleId(host, identity.bundleIdentifier));
    if (!isSupplemental) append(paths, LibraryDataPaths::systemByDisplayName(host, name));
    append(paths, curatedPaths(host, identity));
    if (SlugDataEligibility::includesDotfileAndNodeCaches(identity))
        append(paths, SlugDataPaths::all(host.home, Slug::derive(identity)));
    return ExistingPaths::filter(std::move(paths));
}

}  // namespace tarvik::AssociatedDataPaths
