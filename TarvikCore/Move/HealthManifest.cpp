#include "Move/HealthManifest.h"

#include "Platform/AppStorageNames.h"
#include "Platform/Failure.h"
#include "Platform/Files.h"
#include "Platform/Json.h"

#include <cstdint>

namespace tarvik {

namespace {

using Entries = std::vector<HealthManifestEntry>;

/// Room for some hundred thousand entries, in bytes.
constexpr std::int64_t largestFile = 64 * 1024 * 1024;

Entries entriesWithout(const Host& host, const fs::path& sourcePath) {
    Entries entries = HealthManifest::load(host);
    std::erase_if(entries,
                  [&](const HealthManifestEntry& entry) { return entry.sourcePath.native() == sourcePath.native(); });
    return entries;
}

/// A failure is dropped: what was moved matters more than its record.
void write(const Host& host, const Entries& entries) {
    ignoringFailure([&] {
        Files::createFolder(AppStorageNames::supportRoot(host));
        Files::writeDurably(HealthManifest::file(host), Json::pretty(Json::encoded(entries)));
    });
}

}  // namespace

fs::path HealthManifest::file(const Host& host) {
    return AppStorageNames::supportRoot(host) / "health-manifest.json";
}

std::vector<HealthManifestEntry> HealthManifest::load(const Host& host) {
    try {
        return Json::parsedAs<Entries>(Files::read(file(host), largestFile)).value_or(Entries());
    } catch (const FileError&) {
        return {};
    }
}

void HealthManifest::record(const Host& host, const HealthManifestEntry& entry) {
    Entries entries = entriesWithout(host, entry.sourcePath);
    entries.push_back(entry);
    write(host, entries);
}

void HealthManifest::forget(const Host& host, const fs::path& sourcePath) {
    write(host, entriesWithout(host, sourcePath));
}

}  // namespace tarvik
