#include "MovePlan/ObstacleText.h"

#include "Platform/Files/FileFlags.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/UnlockCommand.h"

#include <fmt/format.h>

#include <cerrno>
#include <string_view>

namespace tarvik::ObstacleText {

namespace {

constexpr uid_t administrator = 0;

std::string cannot(const fs::path& item, std::string_view reason) {
    return fmt::format("{} can't be moved: {}", item.filename().native(), reason);
}

std::string keptBySystem(const fs::path& item, const fs::path& place) {
    return cannot(item, fmt::format("the system itself protects {}.", place.native()));
}

std::string howToUnlock(const TreeObstacle& obstacle) {
    return fmt::format(" Unlock it with: {}", UnlockCommand::forThisSystem(obstacle.flags, obstacle.path));
}

/// Of a folder that lets nothing go, by its locks or by its permissions.
std::string ofSealedFolder(const fs::path& item, const TreeObstacle& obstacle, std::string_view words) {
    std::string sentence =
        cannot(item, fmt::format("nothing may be taken out of {} ({}).", obstacle.path.native(), words));
    if (FileFlags::isLocked(obstacle.flags)) return sentence + howToUnlock(obstacle);
    // What an installer has put there belongs to the administrator. The folder around is nothing to take over.
    const bool isInside = Files::isAtOrBelow(obstacle.path, item);
    if (obstacle.owner == administrator && isInside && obstacle.errorNumber == EACCES)
        return cannot(item, fmt::format("{} belongs to the administrator ({}). Make it yours with: {}",
                                        obstacle.path.native(), words, UnlockCommand::ofOwner(item)));
    return sentence;
}

}  // namespace

std::string of(const fs::path& item, const TreeObstacle& obstacle) {
    const std::string place = obstacle.path.native();
    const std::string words = systemErrorText(obstacle.errorNumber);
    switch (obstacle.kind) {
        case TreeObstacle::Kind::mountedVolume:
            return cannot(item, fmt::format("another volume is mounted at {}.", place));
        case TreeObstacle::Kind::sealedFolder:
            if ((obstacle.flags & FileFlags::restricted) != 0) return keptBySystem(item, obstacle.path);
            return ofSealedFolder(item, obstacle, words);
        case TreeObstacle::Kind::lockedItem:
            if (FileFlags::isKeptBySystem(obstacle.flags)) return keptBySystem(item, obstacle.path);
            return cannot(item, fmt::format("{} is locked ({}).", place, words)) + howToUnlock(obstacle);
        case TreeObstacle::Kind::foreignItem:
            return cannot(item, fmt::format("{} belongs to another user, and only its owner may take it away ({}).",
                                            place, words));
        case TreeObstacle::Kind::deniedItem:
            // Lists answer EACCES; EPERM comes from the system's own guards.
            if (obstacle.errorNumber != EACCES) return keptBySystem(item, obstacle.path);
            return cannot(item, fmt::format("an access control list forbids to remove {} ({}). Lift that with: {}",
                                            place, words, UnlockCommand::ofDenyDelete(obstacle.path)));
        case TreeObstacle::Kind::socket:
            return cannot(item, fmt::format("{} is a socket, which no copy can hold.", place));
        case TreeObstacle::Kind::pipe:
            return cannot(item, fmt::format("{} is a pipe, which no copy can hold.", place));
        case TreeObstacle::Kind::device:
            return cannot(item, fmt::format("{} is a device file, which only the administrator can copy.", place));
        case TreeObstacle::Kind::serverFile:
            return cannot(item, fmt::format("{} is what a file server keeps of a removed file, and no copy would hold "
                                            "it. Quit the program that still uses it.",
                                            place));
        case TreeObstacle::Kind::cloudFile:
            return cannot(item, fmt::format("{} is only in the cloud. Download it first.", place));
        case TreeObstacle::Kind::unreadable:
            break;
    }
    return fmt::format("{} can't be moved as a whole: {} can't be read ({}).", item.filename().native(), place, words);
}

}  // namespace tarvik::ObstacleText
