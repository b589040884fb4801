#include "Move/HiddenPlace.h"

#include "Move/MoverStasher.h"
#include "Platform/ClashNames.h"
#include "Platform/Failure.h"
#include "Platform/Files.h"
#include "Platform/Identifier.h"

#include <fmt/format.h>

#include <chrono>
#include <climits>
#include <fcntl.h>
#include <optional>
#include <string>
#include <string_view>
#include <sys/file.h>

namespace tarvik::HiddenPlace {

namespace {

constexpr std::string_view copyPrefix = ".tarvik-moving-";
constexpr std::string_view removalPrefix = ".tarvik-removing-";
constexpr std::string_view exchangePrefix = ".tarvik-exchanging-";
constexpr std::size_t identifierLength = 8;
constexpr std::chrono::hours longestAct{24};
constexpr int mostNames = 100;

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
        if (!made || host.now() - *made < longestAct) return;
        if (!isExchange || !goesTo(leftover, place)) Files::removeLink(leftover);
        return;
    }
    const FileDescriptor lock = locked(leftover, LOCK_EX);
    if (!lock) return;
    if (isExchange && goesTo(leftover, place)) return;
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

}  // namespace tarvik::HiddenPlace
