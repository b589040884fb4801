#include "Discovery/InstallsDBEntryResolver.h"

#include "Platform/BundleIdentifierReader.h"

namespace tarvik {

std::optional<InstallsDB::Entry> InstallsDBEntryResolver::resolve(const Host& host, const fs::path& symlinkLocation,
                                                                  const fs::path& target) {
    const fs::path database = InstallsDB::defaultPath(host);
    if (!InstallsDB::isAvailable(database)) return std::nullopt;
    if (const auto identifier = BundleIdentifierReader::read(host, target))
        if (auto entry = InstallsDB::entryForBundleId(database, *identifier)) return entry;
    return InstallsDB::entryForAppName(database, InstallsDB::appNameOf(symlinkLocation));
}

}  // namespace tarvik
