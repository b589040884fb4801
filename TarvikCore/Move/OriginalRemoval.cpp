#include "Move/OriginalRemoval.h"

#include "Copying/HiddenName.h"
#include "Copying/ItemLock.h"
#include "Copying/MoverError.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/TreeObstacle.h"

#include <fmt/format.h>

#include <exception>
#include <functional>
#include <optional>
#include <string>

namespace tarvik::OriginalRemoval {

namespace {

/// Why the original, now at `aside`, is to be kept.
std::optional<std::string> reasonToKeep(const Host& host, const fs::path& original, const fs::path& aside,
                                        const ChangeWatch::Mark& start) {
    const auto changed = ChangeWatch::changedBelow(host, aside, start);
    if (!changed) return std::nullopt;
    const fs::path item = changed->empty() ? original.filename() : original.filename() / *changed;
    return fmt::format("{} was changed while it was copied.", item.native());
}

/// Runs a step on the original under its hidden name; a failure speaks of the original.
void onBehalfOf(const fs::path& original, const std::function<void()>& step) {
    try {
        step();
    } catch (const Files::IncompleteRemoval& error) {
        throw Files::IncompleteRemoval("remove", original, error.code());
    } catch (const FileError& error) {
        throw FileError("remove", original, error.code());
    }
}

void requireNoObstacle(const fs::path& original) {
    if (const auto obstacle = TreeObstacle::toRemoval(original)) throw obstacle->error();
}

void requireUnchangedAt(const Host& host, const fs::path& original, const fs::path& place,
                        const ChangeWatch::Mark& start) {
    std::optional<std::string> reason;
    onBehalfOf(original, [&] { reason = reasonToKeep(host, original, place, start); });
    if (reason) throw MoverError::verifyFailed(*reason);
}

/// The callbacks are given by who knows what stands in the original's place meanwhile; `requireCopy` throws when that
/// is not what it should be.
void removeBy(
    const Host& host, const fs::path& original, const fs::path& aside, const ChangeWatch::Mark& start,
    const std::function<void()>& putAside, const std::function<void()>& putBack,
    const std::function<void()>& requireCopy = [] {}) {
    // Most changes are seen here, before a program can have written to the copy by the old path.
    requireUnchangedAt(host, original, original, start);
    const FileDescriptor held = ItemLock::hold(original);
    onBehalfOf(original, putAside);
    try {
        requireUnchangedAt(host, original, aside, start);
        requireCopy();
        onBehalfOf(original, [&] { Files::removeItem(aside, Files::Obstacles::knownToBeNone); });
    } catch (const std::exception& failure) {
        try {
            putBack();
        } catch (const Failure&) {
            const auto* const known = dynamic_cast<const Failure*>(&failure);
            throw Failure(known ? known->domain() : "OriginalRemoval", known ? known->code() : 0,
                          fmt::format("{} What is left of {} is now {}.", failure.what(), original.filename().native(),
                                      aside.native()));
        }
        throw;
    }
}

}  // namespace

void requireUnchanged(const Host& host, const fs::path& original, const ChangeWatch::Mark& start) {
    requireUnchangedAt(host, original, original, start);
}

void remove(const Host& host, const fs::path& original, const ChangeWatch::Mark& start) {
    requireNoObstacle(original);
    const fs::path aside = HiddenName::forRemovalOf(original);
    removeBy(
        host, original, aside, start, [&] { Files::rename(original, aside); }, [&] { Files::rename(aside, original); });
}

LinkInWaiting::LinkInWaiting(const fs::path& original, const fs::path& target)
    : m_original(original), m_target(target), m_place(HiddenName::forRemovalOf(original)) {
    requireNoObstacle(original);
    m_held = ItemLock::hold(original);
    try {
        Files::createSymbolicLink(m_place, target);
    } catch (const FileError& error) {
        throw MoverError::symlinkFailed(FileError("create the link", original, error.code()).description());
    }
}

LinkInWaiting::~LinkInWaiting() {
    ignoringFailure([&] {
        if (Files::linkText(m_place) == m_target) Files::removeLink(m_place);
    });
}

void replaceByLink(const Host& host, const LinkInWaiting& link, const ChangeWatch::Mark& start) {
    const fs::path& original = link.original();
    // The way back must not fail for want of memory.
    const fs::path between = HiddenName::forExchangeOf(original);
    const auto exchange = [&] { Files::exchange(link.place(), original, between); };
    // Somebody may have thrown the copy away since it was proved: the link would lead nowhere.
    const auto requireCopy = [&] {
        if (Files::isMissing(original))
            throw MoverError::verifyFailed(fmt::format("{} has gone from the drive.", original.filename().native()));
    };
    removeBy(host, original, link.place(), start, exchange, exchange, requireCopy);
}

}  // namespace tarvik::OriginalRemoval
