#include "Records/InstallsDBEntryResolver.h"

#include "Platform/Bundles/BundleIdentifierReader.h"
#include "Platform/Files/LastComponent.h"

namespace tarvik {

std::optional<InstallsDB::Entry> InstallsDBEntryResolver::resolve(const Host& host, const fs::path& symlinkLocation,
                                                                  const fs::path& target) {
    const fs::path database = InstallsDB::defaultPath(host);
    if (!InstallsDB::isAvailable(database)) return std::nullopt;
    // An empty one is none: it would be that of any other application without one.
    if (const auto identifier = BundleIdentifierReader::read(host, target); identifier && !identifier->empty())
        if (auto entry = InstallsDB::entryForBundleId(database, *identifier)) return entry;
    return InstallsDB::entryForAppName(database, lastComponent(symlinkLocation));
}

}  // namespace tarvik
