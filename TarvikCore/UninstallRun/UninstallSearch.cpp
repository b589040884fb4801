#include "UninstallRun/UninstallSearch.h"

#include "Platform/Files/ClashNames.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/TrashCan.h"
#include "Platform/Text/Text.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <string>
#include <string_view>

namespace tarvik {

namespace {

constexpr std::string_view stashMark = "-uninstall-";
/// "2026-11-15T174543Z"
constexpr std::size_t stampLength = 18;

std::string stampOf(std::chrono::system_clock::time_point instant) {
    return Text::replacing(Text::isoDate(instant), ":", "");
}

/// When the name says that an item called `own` was set aside by an uninstall; empty when it says something else.
std::string_view stampIn(std::string_view name, const std::string& own) {
    if (name.size() < stashMark.size() + stampLength) return {};
    const std::string_view suffix = name.substr(name.size() - stashMark.size() - stampLength);
    const bool isOwn = suffix.starts_with(stashMark) && name == ClashNames::suffixed(own, suffix, NAME_MAX);
    return isOwn ? suffix.substr(stashMark.size()) : std::string_view();
}

}  // namespace

fs::path UninstallSearch::stashBeside(const fs::path& place) {
    return place.parent_path() / ".TarvikTrash";
}

const UninstallSearch::Folder& UninstallSearch::read(const fs::path& folder) {
    const auto [found, isNew] = m_folders.try_emplace(folder);
    if (isNew)
        for (const std::string& name : Files::names(folder))
            if (const auto identity = ItemIdentity::of(folder / name))
                found->second.emplace_back(folder / name, *identity);
    return found->second;
}

std::optional<fs::path> UninstallSearch::inTrash(const fs::path& place, const ItemIdentity& identity) {
    // On some volumes an item has another number after a rename, and its other marks are those of each copy of it.
    std::optional<fs::path> renumbered;
    for (const fs::path& folder : m_host.trash->foldersFor(place)) {
        for (const auto& [path, other] : read(folder)) {
            if (!identity.isSame(other)) continue;
            if (identity.inode == other.inode) return path;
            if (!renumbered && isTrashName(path.filename().native(), place.filename().native())) renumbered = path;
        }
    }
    return renumbered;
}

bool UninstallSearch::isTrashName(std::string_view name, std::string_view own) {
    if (name == own) return true;
    // A long name is cut for its mark, to what a Trash can keep a record of.
    constexpr std::size_t shortestCut = NAME_MAX - 16;
    // No name holds a NUL: it tells where marks stand.
    const std::string_view stem = own.substr(0, ClashNames::numbered(own, 2, '\0', own.size() + 2).find('\0'));
    const std::string_view extension = own.substr(stem.size());
    if (!name.ends_with(extension)) return false;
    const std::string_view before = name.substr(0, name.size() - extension.size());
    for (const char separator : {' ', '.'}) {
        const auto isMark = [&](std::string_view text) {
            return text.size() > 1 && text[0] == separator && text[1] >= '0' && text[1] <= '9';
        };
        if (before.starts_with(stem) && isMark(before.substr(stem.size()))) return true;
        const std::size_t mark = before.rfind(separator);
        if (name.size() >= shortestCut && mark != std::string_view::npos && isMark(before.substr(mark)) &&
            stem.starts_with(before.substr(0, mark)))
            return true;
    }
    return false;
}

std::optional<fs::path> UninstallSearch::inStash(const fs::path& place, const std::optional<ItemIdentity>& identity,
                                                 std::chrono::system_clock::time_point latest) {
    const fs::path folder = stashBeside(place);
    if (!Files::isFolder(folder)) return std::nullopt;
    const std::string lastStamp = stampOf(latest);
    std::string best;
    std::optional<fs::path> found;
    for (const std::string& name : Files::names(folder)) {
        const std::string stamp(stampIn(name, place.filename().native()));
        if (stamp.empty() || (!identity && stamp > lastStamp) || stamp < best) continue;
        const auto other = ItemIdentity::of(folder / name);
        if (identity && !(other && identity->isSame(*other))) continue;
        best = stamp;
        found = folder / name;
    }
    return found;
}

}  // namespace tarvik
