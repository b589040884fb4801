#include "Move/HiddenPlace.h"

#include "Move/HealthManifest.h"
#include "Move/MoveVerifier.h"
#include "Move/MoverError.h"
#include "Move/MoverStasher.h"
#include "Platform/ClashNames.h"
#include "Platform/Failure.h"
#include "Platform/Files.h"
#include "Platform/Identifier.h"
#include "Platform/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <fcntl.h>
#include <optional>
#include <string>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>

namespace tarvik::HiddenPlace {

namespace {

constexpr std::string_view copyPrefix = ".tarvik-moving-";
constexpr std::string_view removalPrefix = ".tarvik-removing-";
constexpr std::string_view exchangePrefix = ".tarvik-exchanging-";
constexpr std::size_t identifierLength = 8;
constexpr std::chrono::hours longestAct{24};
constexpr int mostNames = 100;
constexpr int mostClaims = 5;

/// The prefix, an identifier, and the item's name as far as there is room.
fs::path hidden(std::string_view prefix, const fs::path& item) {
    const std::string front = fmt::format("{}{}-", prefix, newIdentifier().substr(0, identifierLength));
    return item.parent_path() / (front + ClashNames::suffixed(item.filename().native(), "", NAME_MAX - front.size()));
}

/// The item's own name out of a hidden one; nothing when the name is none of ours.
std::optional<std::string> ownName(std::string_view name, std::string_view prefix) {
    if (!name.starts_with(prefix)) return std::nullopt;
    name.remove_prefix(prefix.size());
    if (name.size() <= identifierLength + 1 || name[identifierLength] != '-') return std::nullopt;
    const auto identifier = name.substr(0, identifierLength);
    if (identifier.find_first_not_of("0123456789ABCDEF") != std::string_view::npos) return std::nullopt;
    return std::string(name.substr(identifierLength + 1));
}

FileDescriptor locked(const fs::path& item, int operation) {
    FileDescriptor handle(::open(item.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC));
    if (handle && ::flock(handle.get(), operation | LOCK_NB) != 0) handle.close();
    return handle;
}

/// Whether another one marks it as in use.
bool isHeld(const fs::path& item) {
    const FileDescriptor handle(::open(item.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC));
    return handle && ::flock(handle.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

/// Whether the handle's item is what stands at the path: a sweep may have taken it away before it was held.
bool isAt(const fs::path& path, const FileDescriptor& handle) {
    struct stat status {};
    const auto info = Files::info(path);
    return handle && info && ::fstat(handle.get(), &status) == 0 && Files::infoOfStatus(status).inode == info->inode;
}

bool isRealItem(const fs::path& path) {
    return Files::itemExists(path) && !Files::isSymbolicLink(path);
}

/// Whether a link under a hidden name tells of an act that was killed between two whole items.
bool isMark(const fs::path& link, const fs::path& place) {
    const auto target = Files::linkText(link);
    return target && Files::itemExists(*target) && isRealItem(place);
}

/// Whether nothing is lost with what stands where a mark leads. A mark can outlive its act, and the place be taken by
/// another item of that name since.
bool isNeedless(const Host& host, const fs::path& copy, const fs::path& original) {
    const auto entries = HealthManifest::load(host);
    const bool isAnothers = std::any_of(entries.begin(), entries.end(), [&](const HealthManifestEntry& entry) {
        return entry.destinationPath == copy && entry.sourcePath != original;
    });
    return !isAnothers && !MoveVerifier::failureReasonByItem(host, copy, original);
}

bool goesTo(const fs::path& leftover, const fs::path& place) {
    bool isThere = false;
    ignoringFailure([&] {
        Files::rename(leftover, place);
        isThere = true;
    });
    return isThere;
}

void clear(const Host& host, const fs::path& leftover, const std::string& ownName, bool isExchange) {
    const fs::path place = leftover.parent_path() / ownName;
    if (Files::isSymbolicLink(leftover)) {
        // A link cannot be held: only its age tells that no running act made it.
        const auto made = Files::modifiedAt(leftover);
        if (!made || host.now() - *made < longestAct || (!isExchange && isMark(leftover, place))) return;
        if (!isExchange || !goesTo(leftover, place)) Files::removeLink(leftover);
        return;
    }
    const FileDescriptor lock = locked(leftover, LOCK_EX);
    if (!lock) return;
    if (isExchange && goesTo(leftover, place)) return;
    if (Files::isFolder(leftover) && Files::names(leftover).empty()) return Files::removeEmptyFolder(leftover);
    const std::string name = ClashNames::suffixed(ownName, " (left by an interrupted move)", NAME_MAX);
    for (int number = 1; number <= mostNames; ++number) {
        const fs::path visible = leftover.parent_path() / ClashNames::numbered(name, number, ' ', NAME_MAX);
        if (!goesTo(leftover, visible)) continue;
        MoverStasher::stash(host, visible);
        return;
    }
}

}  // namespace

fs::path forCopyTo(const fs::path& goal) {
    return hidden(copyPrefix, goal);
}
fs::path forRemovalOf(const fs::path& original) {
    return hidden(removalPrefix, original);
}
fs::path forExchangeOf(const fs::path& item) {
    return hidden(exchangePrefix, item);
}

Claim claimForCopyTo(const fs::path& goal) {
    Claim claim;
    for (int attempt = 0; attempt < mostClaims; ++attempt) {
        claim.path = forCopyTo(goal);
        try {
            if (!Files::claim(claim.path)) continue;
        } catch (const FileError& error) {
            throw FileError("create", goal, error.code());
        }
        claim.held = hold(claim.path);
        // On a file system without locks the last one will do: there a sweep takes nothing away.
        if (isAt(claim.path, claim.held) || attempt == mostClaims - 1) break;
        ignoringFailure([&] { Files::removeItem(claim.path); });
    }
    return claim;
}

bool isCopyUnderWayTo(const fs::path& goal) {
    const auto names = Files::names(goal.parent_path());
    return std::any_of(names.begin(), names.end(), [&](const std::string& name) {
        return ownName(name, copyPrefix) == goal.filename().native() && isHeld(goal.parent_path() / name);
    });
}

std::string withOwnName(std::string text, const fs::path& hidden, const fs::path& item) {
    const std::string name = hidden.lexically_relative(item.parent_path());
    text = Text::replacing(text, name, item.filename().native());
    // A message may spell the item's own name in another way.
    for (const auto prefix : {copyPrefix, removalPrefix, exchangePrefix})
        if (ownName(name, prefix))
            text = Text::replacing(text, name.substr(0, prefix.size() + identifierLength + 1), "");
    return text;
}

void rethrowInOwnName(const fs::path& hidden, const fs::path& item) {
    try {
        throw;
    } catch (const MoverError& error) {
        throw MoverError::retold(error, withOwnName(error.description(), hidden, item));
    } catch (const Failure& failure) {
        throw Failure(failure.domain(), failure.code(), withOwnName(failure.description(), hidden, item));
    }
}

Disposal::Outcome stash(const Host& host, const fs::path& hidden, const fs::path& place) {
    if (!Files::itemExists(hidden)) return {};
    Disposal::Outcome outcome{Disposal::Outcome::End::stayed, hidden};
    ignoringFailure([&] {
        const auto shelf = claimForCopyTo(place);
        const fs::path shelved = shelf.path / place.filename();
        ignoringFailure([&] {
            Files::rename(hidden, shelved);
            const auto end = MoverStasher::stash(host, shelved, place);
            // A link that leads nowhere is passed over as if nothing were there.
            if (Files::itemExists(shelved))
                Files::rename(shelved, hidden);
            else
                outcome = end;
        });
        Files::removeEmptyFolder(shelf.path);
    });
    return outcome;
}

FileDescriptor hold(const fs::path& item) {
    return locked(item, LOCK_SH);
}

void sweep(const Host& host, const fs::path& folder) noexcept {
    ignoringFailure([&] {
        for (const auto& name : Files::names(folder)) {
            for (const auto prefix : {copyPrefix, removalPrefix, exchangePrefix}) {
                const auto own = ownName(name, prefix);
                if (own) ignoringFailure([&] { clear(host, folder / name, *own, prefix == exchangePrefix); });
            }
        }
    });
}

std::vector<fs::path> copiesLeftIn(const fs::path& folder) {
    std::vector<fs::path> copies;
    for (const auto& name : Files::names(folder))
        if (ownName(name, copyPrefix) && !isHeld(folder / name)) copies.push_back(folder / name);
    return copies;
}

void clearUnfinished(const Host& host, const fs::path& source, const fs::path& destination) noexcept {
    ignoringFailure([&] {
        std::vector<fs::path> marks;
        for (const auto& name : Files::names(source.parent_path())) {
            const fs::path link = source.parent_path() / name;
            for (const auto prefix : {copyPrefix, removalPrefix})
                if (ownName(name, prefix) == ownName(hidden(prefix, source).filename().native(), prefix) &&
                    Files::linkText(link) == destination && isRealItem(source))
                    marks.push_back(link);
        }
        if (marks.empty()) return;
        const FileDescriptor original = locked(source, LOCK_EX);
        if (!original) return;
        if (Files::itemExists(destination)) {
            const FileDescriptor copy = locked(destination, LOCK_EX);
            if (!copy || !isNeedless(host, destination, source)) return;
            if (MoverStasher::stash(host, destination).end == Disposal::Outcome::End::stayed) return;
        }
        for (const auto& link : marks) Files::removeLink(link);
    });
}

}  // namespace tarvik::HiddenPlace
