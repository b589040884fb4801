#include "Copying/MoveVerifier.h"

#include "Copying/EntryCount.h"
#include "Platform/Files/AppleDouble.h"
#include "Platform/Files/FileError.h"
#include "Platform/Files/FolderTrail.h"
#include "Platform/Files/TreeWalk.h"
#include "Platform/Files/UncopiedItems.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <map>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace tarvik::MoveVerifier {

namespace {

using Reason = std::optional<std::string>;

/// What is asked of a copy.
struct Terms {
    Volumes volumes;
    bool countsEntries = false;
    /// Of a backup: what has changed since may differ. Null for an original that is to go.
    const ChangeWatch::Mark* mark = nullptr;

    /// Whether a copy that differs there is good all the same. `source` is null when `error` kept it from being read.
    bool excuse(const char* name, const struct stat* source, int error) const {
        if (!mark) return false;
        if (!source) return error == ENOENT;
        return ChangeWatch::hasChanged(*source, *mark) || UncopiedItems::isByName(name) ||
               UncopiedItems::isByType(Files::typeOfMode(source->st_mode));
    }
};

/// One item by the handle of its folder and its name.
struct Place {
    int folderHandle;
    const char* name;
};

std::optional<std::string> linkTextAt(const Place& place) {
    char text[PATH_MAX];
    const ssize_t length = ::readlinkat(place.folderHandle, place.name, text, sizeof text);
    if (length < 0) return std::nullopt;
    return std::string(text, static_cast<std::size_t>(length));
}

/// Items that no copy is expected to hold, or to hold with any size.
bool shouldSkipUnsupported(const struct stat& source) {
    switch (Files::typeOfMode(source.st_mode)) {
        case Files::ItemType::socket:
        case Files::ItemType::blockDevice:
        case Files::ItemType::characterDevice:
        case Files::ItemType::unknown:
            return true;
        default:
            return false;
    }
}

Reason verifySymlink(const Place& source, const Place& destination, const std::string& relativePath) {
    if (linkTextAt(source) == linkTextAt(destination)) return std::nullopt;
    return fmt::format("{} symlink target does not match.", relativePath);
}

/// `sourceStatus` is null when the item could not be read. `copy` gets the status of the copy, as far as it is read.
Reason verifyItem(const struct stat* sourceStatus, const Place& source, const Place& destination,
                  const std::string& relativePath, struct stat& copy) {
    if (!sourceStatus) return fmt::format("Could not inspect {}.", relativePath);
    if (shouldSkipUnsupported(*sourceStatus)) return std::nullopt;
    if (::fstatat(destination.folderHandle, destination.name, &copy, AT_SYMLINK_NOFOLLOW) != 0)
        return fmt::format("{} is missing at the destination.", relativePath);
    if (S_ISLNK(sourceStatus->st_mode)) return verifySymlink(source, destination, relativePath);
    if (S_ISDIR(sourceStatus->st_mode)) {
        if (S_ISDIR(copy.st_mode)) return std::nullopt;
        return fmt::format("{} is not a folder at the destination.", relativePath);
    }
    if (S_ISREG(sourceStatus->st_mode)) {
        if (S_ISREG(copy.st_mode) && copy.st_size == sourceStatus->st_size) return std::nullopt;
        return fmt::format("{} copied with a different file size.", relativePath);
    }
    return std::nullopt;
}

/// The entries that are items.
std::optional<std::int64_t> itemCount(std::optional<std::int64_t> entries, const fs::path& root,
                                      bool keepsAppleDouble) {
    if (!entries || !keepsAppleDouble) return entries;
    return *entries - AppleDouble::countIn(root);
}

Reason fileCountParity(const Host& host, const fs::path& source, const fs::path& destination, const Volumes& volumes) {
    const auto counts = EntryCount::count(host, source, destination);
    const auto total = itemCount(counts.source, source, volumes.sourceKeepsAppleDouble);
    const auto copied = itemCount(counts.destination, destination, volumes.destinationKeepsAppleDouble);
    if (!total || !copied || *copied >= *total) return std::nullopt;
    return fmt::format("{} copied with {} of {} entries — {} missing.", source.filename().native(), *copied, *total,
                       *total - *copied);
}

/// Notices where two items of one folder have become one: a volume that folds case or normal forms takes their names
/// for one name, and what came second has replaced what came first.
class Mergers {
public:
    /// `copy` is empty where none is expected.
    void note(int depth, const struct stat& source, const struct stat& copy) {
        if (copy.st_nlink == 0) return;
        const auto level = static_cast<std::size_t>(depth);
        if (m_levels.size() <= level) m_levels.resize(level + 1);
        m_levels[level].push_back({copy.st_ino, source.st_ino});
    }

    /// Looks at the entries of a folder, when all have been noted, and forgets them.
    Reason inFolder(int depth, const fs::path& folder) {
        const auto level = static_cast<std::size_t>(depth);
        if (m_levels.size() <= level) return std::nullopt;
        auto& items = m_levels[level];
        std::sort(items.begin(), items.end());
        // Hard links have been one item before. Some volumes give all empty files one number: then the names tell.
        const auto areTwo = [](const Item& one, const Item& other) {
            return one.copy == other.copy && one.source != other.source;
        };
        const bool isSuspicious = std::adjacent_find(items.begin(), items.end(), areTwo) != items.end();
        items.clear();
        return isSuspicious ? clashIn(folder) : std::nullopt;
    }

private:
    struct Item {
        ino_t copy;
        ino_t source;

        bool operator<(const Item& other) const {
            return std::pair(copy, source) < std::pair(other.copy, other.source);
        }
    };

    static Reason clashIn(const fs::path& folder) {
        std::map<std::string, std::string> names;
        for (const std::string& name : Files::names(folder)) {
            const auto [first, isNew] = names.emplace(Text::nameKey(name), name);
            if (!isNew)
                return fmt::format("{} and {} have one name at the destination.", first->second,
                                   (folder.filename() / name).native());
        }
        return std::nullopt;
    }

    std::vector<std::vector<Item>> m_levels;
};

/// Walks the source; a trail of open folders keeps step in the destination.
Reason verifyContents(const fs::path& source, const fs::path& destination, const Terms& terms) {
    TreeWalk walk(source, {.givesLeave = true});
    if (terms.mark && walk.rootError() == ENOENT) return std::nullopt;
    if (walk.rootError()) return fmt::format("Could not inspect {}.", source.filename().native());
    FolderTrail copy(destination);
    Mergers mergers;
    bool hasJustEntered = false;
    while (walk.next()) {
        const bool isOfFolderEntered = std::exchange(hasJustEntered, false);
        if (walk.event() == TreeWalk::Event::unreadable) {
            const bool hasGone = isOfFolderEntered && walk.errorNumber() == ENOENT;
            if (terms.mark && hasGone && copy.leave() == 0) continue;
            return fmt::format("Could not inspect {}: {}", walk.name(), systemErrorText(walk.errorNumber()));
        }
        if (walk.event() == TreeWalk::Event::leave) {
            if (auto reason = mergers.inFolder(walk.depth() + 1, source / walk.relativePath())) return reason;
            if (const int error = copy.leave())
                return fmt::format("Could not inspect {}: {}", walk.name(), systemErrorText(error));
            continue;
        }
        if (terms.volumes.sourceKeepsAppleDouble && AppleDouble::belongsToItem(walk.folderHandle(), walk.name()))
            continue;
        struct stat status {};
        const struct stat* original = walk.status();
        const int statusError = original ? 0 : errno;
        if (auto reason = verifyItem(original, {walk.folderHandle(), walk.name()}, {copy.handle(), walk.name()},
                                     walk.relativePath(), status)) {
            if (!terms.excuse(walk.name(), original, statusError)) return reason;
            walk.skipContents();
            continue;
        }
        mergers.note(walk.depth(), *original, status);
        if (walk.type() != Files::ItemType::folder) continue;
        hasJustEntered = true;
        if (const int error = copy.enter(walk.name()))
            return fmt::format("Could not inspect {}: {}", walk.name(), systemErrorText(error));
    }
    return mergers.inFolder(0, source);
}

Reason check(const Host& host, const fs::path& source, const fs::path& destination, const Terms& terms) {
    if (!Files::exists(destination))
        return fmt::format("{} is missing at the destination.", destination.filename().native());
    struct stat status {};
    struct stat copy {};
    const struct stat* original = ::lstat(source.c_str(), &status) == 0 ? &status : nullptr;
    const int statusError = original ? 0 : errno;
    if (auto reason =
            verifyItem(original, {AT_FDCWD, source.c_str()}, {AT_FDCWD, destination.c_str()}, source.filename(), copy))
        return terms.excuse(source.c_str(), original, statusError) ? std::nullopt : reason;
    if (!S_ISDIR(status.st_mode)) return std::nullopt;
    if (terms.countsEntries)
        if (auto reason = fileCountParity(host, source, destination, terms.volumes)) return reason;
    return verifyContents(source, destination, terms);
}

}  // namespace

Volumes Volumes::of(const fs::path& source, const fs::path& destination) {
    return {AppleDouble::areKeptAt(source), AppleDouble::areKeptAt(destination)};
}

std::optional<std::string> failureReason(const Host& host, const fs::path& source, const fs::path& destination) {
    return failureReason(host, source, destination, Volumes::of(source, destination));
}

std::optional<std::string> failureReason(const Host& host, const fs::path& source, const fs::path& destination,
                                         const Volumes& volumes) {
    return check(host, source, destination, {.volumes = volumes, .countsEntries = true});
}

std::optional<std::string> failureReasonByItem(const Host& host, const fs::path& source, const fs::path& destination) {
    return failureReasonByItem(host, source, destination, Volumes::of(source, destination));
}

std::optional<std::string> failureReasonByItem(const Host& host, const fs::path& source, const fs::path& destination,
                                               const Volumes& volumes) {
    return check(host, source, destination, {.volumes = volumes});
}

std::optional<std::string> failureReasonSince(const Host& host, const fs::path& source, const fs::path& destination,
                                              const ChangeWatch::Mark& mark) {
    return check(host, source, destination, {.volumes = Volumes::of(source, destination), .mark = &mark});
}

}  // namespace tarvik::MoveVerifier
