#include "Records/HealthManifest.h"

#include "Platform/Basics/Failure.h"
#include "Platform/Files/ClashNames.h"
#include "Platform/Files/FileDescriptor.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Platform/Text/Json.h"
#include "Platform/Text/LocalTime.h"

#include <fmt/format.h>

#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdint>
#include <fcntl.h>
#include <string>
#include <sys/file.h>
#include <thread>
#include <utility>

namespace tarvik {

namespace {

using Entries = std::vector<HealthManifestEntry>;

/// Room for some hundred thousand entries, in bytes.
constexpr std::int64_t largestFile = std::int64_t{64} * 1024 * 1024;

constexpr std::chrono::seconds longestWait{2};
constexpr std::chrono::milliseconds pause{5};
constexpr int mostNames = 100;

struct Content {
    Entries entries;
    /// What stands there cannot be read, or is no manifest.
    bool isDamaged = false;
};

/// @throws FileError when it cannot be read for the moment, or is a folder.
Content contentOf(const fs::path& file) {
    try {
        const std::string text = Files::read(file, largestFile);
        auto entries = Json::parsedAs<Entries>(text);
        const bool isDamaged = !entries && !text.empty();
        return {std::move(entries).value_or(Entries()), isDamaged};
    } catch (const FileError& error) {
        switch (error.code()) {
            case ENOENT:
                return {};
            case EISDIR:
            case EMFILE:
            case ENFILE:
            case ENOMEM:
                throw;
            default:
                return {{}, true};
        }
    }
}

/// Keeps what others wrote, or an earlier version, under a name that says what it is.
void setAside(const Host& host, const fs::path& file) {
    const auto today = LocalTime::at(host.now());
    const std::string name = fmt::format("{} (damaged {:04}-{:02}-{:02}){}", file.stem().native(), today.year,
                                         today.month, today.day, file.extension().native());
    for (int number = 1;; ++number) {
        try {
            return Files::rename(file, file.parent_path() / ClashNames::numbered(name, number, ' ', NAME_MAX));
        } catch (const FileError& error) {
            if (error.code() != EEXIST || number == mostNames) throw;
        }
    }
}

/// Keeps other changes of the manifest, by this program or another, from happening between its reading and its writing.
/// They take no time, so that whoever waits long goes on without: some file systems know no locks.
FileDescriptor lockOn(const fs::path& folder) {
    FileDescriptor handle(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const auto end = std::chrono::steady_clock::now() + longestWait;
    while (handle && ::flock(handle.get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK || std::chrono::steady_clock::now() > end) break;
        std::this_thread::sleep_for(pause);
    }
    return handle;
}

/// Puts `entry`, if any, in the place of what is recorded for `sourcePath`. A failure is dropped: what was moved
/// matters more than its record.
void replace(const Host& host, const fs::path& sourcePath, const HealthManifestEntry* entry) {
    ignoringFailure([&] {
        const fs::path file = HealthManifest::file(host);
        Files::createFolder(file.parent_path());
        const FileDescriptor lock = lockOn(file.parent_path());
        auto [entries, isDamaged] = contentOf(file);
        std::erase_if(entries, [&](const HealthManifestEntry& known) {
            return known.sourcePath.native() == sourcePath.native();
        });
        if (entry) entries.push_back(*entry);
        const std::string text = Json::pretty(Json::encoded(entries));
        if (isDamaged) setAside(host, file);
        Files::writeDurably(file, text);
    });
}

}  // namespace

fs::path HealthManifest::file(const Host& host) {
    return AppStorageNames::supportRoot(host) / "health-manifest.json";
}

std::vector<HealthManifestEntry> HealthManifest::load(const Host& host) noexcept {
    std::vector<HealthManifestEntry> entries;
    ignoringFailure([&] { entries = contentOf(file(host)).entries; });
    return entries;
}

void HealthManifest::record(const Host& host, const HealthManifestEntry& entry) {
    replace(host, entry.sourcePath, &entry);
}

void HealthManifest::forget(const Host& host, const fs::path& sourcePath) {
    replace(host, sourcePath, nullptr);
}

}  // namespace tarvik
