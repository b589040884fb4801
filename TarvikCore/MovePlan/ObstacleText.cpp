#include "MovePlan/ObstacleText.h"

#include "Platform/Files/FileFlags.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/UnlockCommand.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <cerrno>
#include <string_view>

namespace tarvik::ObstacleText {

namespace {

constexpr uid_t administrator = 0;

std::string cannotBe(std::string_view done, const fs::path& item, std::string_view reason) {
    return fmt::format("{} can't be {}: {}", item.filename().native(), done, reason);
}

std::string cannot(const fs::path& item, std::string_view reason) {
    return cannotBe("moved", item, reason);
}

std::string keptBySystem(const fs::path& item, const fs::path& place) {
    return cannot(item, fmt::format("the system itself protects {}.", place.native()));
}

std::string howToUnlock(const TreeObstacle& obstacle) {
    return fmt::format(" Unlock it with: {}", UnlockCommand::forThisSystem(obstacle.flags, obstacle.path));
}

std::string howToLift(const TreeObstacle& denied) {
    if (denied.denial) return fmt::format(" Lift that with: {}", UnlockCommand::ofDenial(*denied.denial));
    return fmt::format(" See which of its entries does with: {}", UnlockCommand::showingLists(denied.path));
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

std::string_view wordOf(TreeObstacle::Kind leftOut) {
    switch (leftOut) {
        case TreeObstacle::Kind::pipe:
            return "a pipe";
        case TreeObstacle::Kind::socket:
            return "a socket";
        default:
            return "what a file server keeps of a removed file";
    }
}

}  // namespace

std::string of(const fs::path& item, const TreeObstacle& obstacle, std::string_view done) {
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
            return cannot(item, fmt::format("an access control list forbids to remove {} ({}).", place, words)) +
                   howToLift(obstacle);
        case TreeObstacle::Kind::socket:
            return cannotBe(done, item, fmt::format("{} is a socket, which no copy can hold.", place));
        case TreeObstacle::Kind::pipe:
            return cannotBe(done, item, fmt::format("{} is a pipe, which no copy can hold.", place));
        case TreeObstacle::Kind::device:
            return cannotBe(done, item,
                            fmt::format("{} is a device file, which only the administrator can copy.", place));
        case TreeObstacle::Kind::serverFile:
            return cannotBe(done, item,
                            fmt::format("{} is what a file server keeps of a removed file, and no copy would hold "
                                        "it. Quit the program that still uses it.",
                                        place));
        case TreeObstacle::Kind::cloudFile:
            return cannotBe(done, item, fmt::format("{} is only in the cloud. Download it first.", place));
        case TreeObstacle::Kind::unreadable:
            break;
    }
    return fmt::format("{} can't be {} as a whole: {} can't be read ({}).", item.filename().native(), done, place,
                       words);
}

std::string ofLeftOut(const fs::path& item, const TreeObstacle& first, std::int64_t count) {
    const auto others = count == 1 ? std::string() : fmt::format(" and {} like it", Text::counted(count - 1, "other"));
    return fmt::format("{} is backed up without {}{}, as no copy can hold {}.", item.filename().native(),
                       first.path.native(), others, wordOf(first.kind));
}

}  // namespace tarvik::ObstacleText
