#include "Copying/MoveVerifier.h"

#include "Copying/EntryCount.h"
#include "Platform/Files/FileError.h"
#include "Platform/Files/FolderTrail.h"
#include "Platform/Files/TreeWalk.h"

#include <fmt/format.h>

#include <climits>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarvik::MoveVerifier {

namespace {

using Reason = std::optional<std::string>;

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

/// `sourceStatus` is null when the item could not be read.
Reason verifyItem(const struct stat* sourceStatus, const Place& source, const Place& destination,
                  const std::string& relativePath) {
    if (!sourceStatus) return fmt::format("Could not inspect {}.", relativePath);
    if (shouldSkipUnsupported(*sourceStatus)) return std::nullopt;
    struct stat copy {};
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

Reason fileCountParity(const Host& host, const fs::path& source, const fs::path& destination) {
    const auto [total, copied] = EntryCount::count(host, source, destination);
    if (!total || !copied || *copied >= *total) return std::nullopt;
    return fmt::format("{} copied with {} of {} entries — {} missing.", source.filename().native(), *copied, *total,
                       *total - *copied);
}

/// Walks the source; a trail of open folders keeps step in the destination.
Reason verifyContents(const fs::path& source, const fs::path& destination) {
    TreeWalk walk(source, {.givesLeave = true});
    if (walk.rootError()) return fmt::format("Could not inspect {}.", source.filename().native());
    FolderTrail copy(destination);
    while (walk.next()) {
        if (walk.event() == TreeWalk::Event::unreadable)
            return fmt::format("Could not inspect {}: {}", walk.name(), systemErrorText(walk.errorNumber()));
        if (walk.event() == TreeWalk::Event::leave) {
            if (const int error = copy.leave())
                return fmt::format("Could not inspect {}: {}", walk.name(), systemErrorText(error));
            continue;
        }
        if (auto reason = verifyItem(walk.status(), {walk.folderHandle(), walk.name()}, {copy.handle(), walk.name()},
                                     walk.relativePath()))
            return reason;
        if (walk.type() != Files::ItemType::folder) continue;
        if (const int error = copy.enter(walk.name()))
            return fmt::format("Could not inspect {}: {}", walk.name(), systemErrorText(error));
    }
    return std::nullopt;
}

Reason check(const Host& host, const fs::path& source, const fs::path& destination, bool countsEntries) {
    if (!Files::exists(destination))
        return fmt::format("{} is missing at the destination.", destination.filename().native());
    struct stat status {};
    const bool isKnown = ::lstat(source.c_str(), &status) == 0;
    if (auto reason = verifyItem(isKnown ? &status : nullptr, {AT_FDCWD, source.c_str()},
                                 {AT_FDCWD, destination.c_str()}, source.filename()))
        return reason;
    if (!S_ISDIR(status.st_mode)) return std::nullopt;
    if (countsEntries)
        if (auto reason = fileCountParity(host, source, destination)) return reason;
    return verifyContents(source, destination);
}

}  // namespace

std::optional<std::string> failureReason(const Host& host, const fs::path& source, const fs::path& destination) {
    return check(host, source, destination, true);
}

std::optional<std::string> failureReasonByItem(const Host& host, const fs::path& source, const fs::path& destination) {
    return check(host, source, destination, false);
}

}  // namespace tarvik::MoveVerifier
