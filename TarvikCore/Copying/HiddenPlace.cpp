#include "Copying/HiddenPlace.h"

#include "Copying/FileStash.h"
#include "Copying/HiddenName.h"
#include "Copying/ItemLock.h"
#include "Copying/MoverStasher.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"

#include <algorithm>
#include <functional>
#include <string>

namespace tarvik::HiddenPlace {

namespace {

constexpr int mostClaims = 5;

/// Lets the item go under the name that it has at `place`, on a shelf that no other act takes for its own.
Disposal::Outcome disposeUnderOwnName(const fs::path& hidden, const fs::path& place,
                                      const std::function<Disposal::Outcome(const fs::path& shelved)>& dispose) {
    if (!Files::itemExists(hidden)) return {};
    Disposal::Outcome outcome{Disposal::Outcome::End::stayed, hidden};
    ignoringFailure([&] {
        const auto shelf = claimForCopyTo(place);
        const fs::path shelved = shelf.path / place.filename();
        ignoringFailure([&] {
            Files::rename(hidden, shelved);
            const auto end = dispose(shelved);
            // A link that leads nowhere is passed over as if nothing were there.
            if (!Files::itemExists(shelved)) {
                outcome = end;
                return;
            }
            outcome.place = shelved;
            Files::rename(shelved, hidden);
            outcome.place = hidden;
        });
        Files::removeEmptyFolder(shelf.path);
    });
    return outcome;
}

}  // namespace

Claim claimForCopyTo(const fs::path& goal) {
    Claim claim;
    for (int attempt = 0; attempt < mostClaims; ++attempt) {
        claim.path = HiddenName::forCopyTo(goal);
        try {
            if (!Files::claim(claim.path)) continue;
        } catch (const FileError& error) {
            throw FileError("create", goal, error.code());
        }
        claim.held = ItemLock::hold(claim.path);
        // Another act may have cleared it away before it was held. On a file system without locks the last one will do:
        // there nothing is cleared away.
        if (ItemLock::isHeldAt(claim.path, claim.held) || attempt == mostClaims - 1) break;
        ignoringFailure([&] { Files::removeItem(claim.path); });
    }
    return claim;
}

bool isCopyUnderWayTo(const fs::path& goal) {
    const auto names = Files::names(goal.parent_path());
    return std::any_of(names.begin(), names.end(), [&](const std::string& name) {
        return HiddenName::isFor(name, HiddenName::Purpose::copy, goal) && ItemLock::isHeld(goal.parent_path() / name);
    });
}

Disposal::Outcome stash(const Host& host, const fs::path& hidden, const fs::path& place) {
    return disposeUnderOwnName(hidden, place,
                               [&](const fs::path& shelved) { return MoverStasher::stash(host, shelved, place); });
}

Disposal::Outcome moveAside(const Host& host, const fs::path& hidden, const fs::path& place, std::string_view reason) {
    return disposeUnderOwnName(
        hidden, place, [&](const fs::path& shelved) { return FileStash::moveAside(host, shelved, place, reason); });
}

}  // namespace tarvik::HiddenPlace
