#include "UninstallRun/UninstallUndo.h"

#include "MovePlan/MoveRefusal.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Basics/Notify.h"
#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Platform/Machine/KeptAwake.h"
#include "Platform/Machine/SilentVolumes.h"
#include "Platform/Machine/TrashCan.h"
#include "Platform/Storage/DrivePath.h"
#include "Platform/Text/Text.h"
#include "UninstallRun/UninstallJournalFile.h"
#include "UninstallRun/UninstallLock.h"
#include "UninstallRun/UninstallPlaces.h"
#include "UninstallRun/UninstallSearch.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <map>
#include <optional>
#include <utility>

namespace tarvik::UninstallUndo {

namespace {

using MovedItem = AppUninstallSession::MovedItem;
using State = Item::State;

constexpr const char* placeIsTaken = "Something stands at its old place.";

/// Why an item cannot come back.
class Stuck : public Failure {
public:
    explicit Stuck(std::string reason) : Failure("UninstallUndo", 0, std::move(reason)) {}
};

/// What stands at a path; nothing when it is certain that nothing does. @throws Stuck when it may not be looked at: a
/// Mac lets only some programs look into the Trash.
std::optional<ItemIdentity> looked(const fs::path& path) {
    if (auto identity = ItemIdentity::of(path)) return identity;
    const int error = errno;
    if (error == ENOENT || error == ENOTDIR) return std::nullopt;
    throw Stuck(fmt::format("{} cannot be looked at: {}.", path.native(), systemErrorText(error)));
}

/// The folder that the way to `path` leads to, with all links on it resolved; what is missing is taken as written.
/// Empty when it leads nowhere.
fs::path realFolderOf(const fs::path& path) {
    fs::path there = path.parent_path();
    while (there.has_relative_path() && !Files::itemExists(there)) there = there.parent_path();
    const fs::path rest = path.parent_path().lexically_relative(there);
    const fs::path real = Files::resolved(there).value_or(fs::path());
    return real.empty() || rest == "." ? real : real / rest;
}

/// @throws Stuck when the drive is away on which the path is.
void requireDrive(const Host& host, const fs::path& path) {
    if (const auto drive = DrivePath::absent(host, path))
        throw Stuck(fmt::format("The drive {} is away.", drive->filename().native()));
}

/// The look at one item of a session.
class Look {
public:
    Look(const Host& host, UninstallSearch& search, const AppUninstallSession& session, const MovedItem& moved,
         const UninstallJournal::Item* noted)
        : m_host(host), m_search(search), m_session(session), m_moved(moved), m_noted(noted) {}

    Item item() {
        Item item{.originalPath = m_moved.originalPath, .category = m_moved.category, .sizeBytes = m_moved.sizeBytes};
        try {
            take(item);
        } catch (const Failure& failure) {
            item.state = State::stuck;
            item.reason = failure.description();
        }
        return item;
    }

private:
    void take(Item& item) const {
        requireAnswer();
        requirePlace();
        if (m_noted && !m_noted->identity) throw Stuck("Nothing stood there when the uninstall began.");
        const auto standing = looked(m_moved.originalPath);
        if (standing && identity() && standing->isSame(*identity())) return setBack(item);
        const auto place = waitingPlace();
        const auto waiting = place ? looked(*place) : std::nullopt;
        if (!waiting && standing && !identity()) return setBack(item);
        if (!waiting) throw Stuck(reasonForNothing(place, standing.has_value()));
        requireWaitingPlace(*place);
        if (identity() && !waiting->isSame(*identity()))
            throw Stuck(fmt::format("{} is not what was moved there.", place->native()));
        item.place = *place;
        if (standing) throw Stuck(placeIsTaken);
        item.state = State::waiting;
    }

    /// A call into a volume that hangs may never return. An item that is a link may lead into one: it is not followed.
    void requireAnswer() const {
        const auto isSilent = [&](const fs::path& path) { return SilentVolumes::hold(m_host, path.parent_path()); };
        if (isSilent(m_moved.originalPath) || (m_noted && isSilent(m_noted->place)) ||
            (m_moved.trashedTo && isSilent(*m_moved.trashedTo)) || (m_moved.stashedTo && isSilent(*m_moved.stashedTo)))
            throw Stuck("Its drive does not answer.");
    }

    static void setBack(Item& item) { item.state = State::back; }

    const std::optional<ItemIdentity>& identity() const {
        static const std::optional<ItemIdentity> unknown;
        return m_noted ? m_noted->identity : unknown;
    }

    std::optional<fs::path> waitingPlace() const {
        if (m_moved.trashedTo) return m_moved.trashedTo;
        if (m_moved.stashedTo) {
            if (*m_moved.stashedTo != UninstallSearch::stashBeside(m_moved.originalPath)) refuse();
            return UninstallSearch::inStash(m_moved.originalPath, identity(), m_session.createdAt);
        }
        return identity() ? m_search.inTrash(m_moved.originalPath, *identity()) : std::nullopt;
    }

    [[noreturn]] static void refuse() { throw Stuck("Its record names a place that no uninstall writes to."); }

    /// No run takes from anywhere else, and no way leads through a link that it did not lead through then.
    void requirePlace() const {
        const fs::path& path = m_moved.originalPath;
        if (!UninstallPlaces::isOne(m_host, m_session, m_moved.category, path)) refuse();
        const fs::path& place = m_noted ? m_noted->place : path;
        requireDrive(m_host, place);
        const fs::path folder = realFolderOf(path);
        if (folder.empty()) throw Stuck(fmt::format("The way to {} leads nowhere at the moment.", path.native()));
        if (folder != place.parent_path())
            throw Stuck(fmt::format("The way to {} leads somewhere else by now.", path.native()));
        if (auto refusal = MoveRefusal::ofPlace(m_host, folder / path.filename())) throw Stuck(*std::move(refusal));
    }

    void requireWaitingPlace(const fs::path& place) const {
        const bool hasNul = place.native().find('\0') != std::string::npos;
        if (hasNul || !place.is_absolute() || Files::standardized(place) != place || !place.has_filename()) refuse();
        if (!m_moved.trashedTo && m_moved.stashedTo) return;  // It was found in there.
        const auto folders = m_host.trash->foldersFor(m_moved.originalPath);
        const fs::path folder = place.parent_path();
        const bool isTrash = std::any_of(folders.begin(), folders.end(), [&](const fs::path& trash) {
            return folder == trash || Files::isSameItem(Files::info(folder), Files::info(trash));
        });
        if (!isTrash) refuse();
        // Nothing else tells that it is the item that went.
        if (!identity() &&
            !UninstallSearch::isTrashName(place.filename().native(), m_moved.originalPath.filename().native()))
            throw Stuck(fmt::format("Nothing tells that {} is what was moved there.", place.native()));
    }

    std::string reasonForNothing(const std::optional<fs::path>& place, bool isPlaceTaken) const {
        if (place) requireDrive(m_host, *place);
        const std::string also = isPlaceTaken ? ", and something else stands at its old place" : "";
        if (!m_moved.trashedTo && m_moved.stashedTo)
            return fmt::format("It is not in {} any more{}.", m_moved.stashedTo->native(), also);
        if (place && !Files::exists(place->parent_path()))
            return fmt::format("{} is not there: its drive may be away{}.", place->parent_path().native(), also);
        return fmt::format("It is not in the Trash any more{}.", also);
    }

    const Host& m_host;
    UninstallSearch& m_search;
    const AppUninstallSession& m_session;
    const MovedItem& m_moved;
    const UninstallJournal::Item* m_noted;
};

/// What the journal tells of the n-th item of the record.
const UninstallJournal::Item* notedOf(const std::optional<UninstallJournal>& journal, const MovedItem& moved,
                                      std::size_t number) {
    if (!journal) return nullptr;
    const bool isInOrder = number < journal->items.size() && journal->items[number].path == moved.originalPath;
    return isInOrder ? &journal->items[number] : journal->itemAt(moved.originalPath);
}

/// Makes what is missing of a folder, and takes it away again at the end unless it is kept.
class MadeFolders {
public:
    MadeFolders() = default;
    MadeFolders(const MadeFolders&) = delete;
    MadeFolders& operator=(const MadeFolders&) = delete;
    ~MadeFolders() {
        for (auto each = m_made.rbegin(); each != m_made.rend(); ++each)
            ignoringFailure([&] { Files::removeEmptyFolder(*each); });
    }

    /// @throws FileError in its middle, too.
    void make(const fs::path& folder) {
        std::vector<fs::path> missing;
        for (fs::path each = folder; each.has_relative_path() && !Files::itemExists(each); each = each.parent_path())
            missing.push_back(each);
        for (auto each = missing.rbegin(); each != missing.rend(); ++each)
            if (Files::createNewFolder(*each)) m_made.push_back(*each);
    }
    void keep() { m_made.clear(); }

private:
    std::vector<fs::path> m_made;
};

void bringBack(const Host& host, const Item& item) {
    MadeFolders folders;
    folders.make(item.originalPath.parent_path());
    Files::rename(item.place, item.originalPath);
    folders.keep();
    host.trash->forget(item.place);
    const fs::path stash = UninstallSearch::stashBeside(item.originalPath);
    if (item.place.parent_path() == stash) ignoringFailure([&] { Files::removeEmptyFolder(stash); });
}

std::string reasonOf(const FileError& error) {
    if (error.code() == EEXIST) return placeIsTaken;
    if (error.code() == EXDEV) return "It waits on another volume than its old place.";
    return error.description() + ".";
}

/// The paths at which the application stood: a link may have gone with the copy on a drive that it leads to.
std::vector<fs::path> lockedPathsOf(const AppUninstallSession& session) {
    std::vector<fs::path> places = {session.appPath};
    for (const MovedItem& moved : session.movedItems)
        if (moved.category == UninstallCategory::executable) places.push_back(moved.originalPath);
    return places;
}

}  // namespace

std::vector<Item> look(const Host& host, const AppUninstallSession& session) {
    const auto journal = UninstallJournals::ofSession(AppStorageNames::uninstallSessionRoot(host), session.id);
    UninstallSearch search(host);
    std::vector<Item> items;
    for (std::size_t number = 0; number < session.movedItems.size(); ++number) {
        const MovedItem& moved = session.movedItems[number];
        if (moved.succeeded)
            items.push_back(Look(host, search, session, moved, notedOf(journal, moved, number)).item());
    }
    return items;
}

std::vector<Item> putBack(const Host& machine, const AppUninstallSession& session, const AppUninstallReporter& reporter,
                          const Cancellation& stop) {
    const Host host = SilentVolumes::noted(machine);
    const fs::path root = AppStorageNames::uninstallSessionRoot(host);
    const auto locks = UninstallLock::takeAll(root, lockedPathsOf(session), session.appName);
    const KeptAwake awake(host, "An uninstall is being taken back");
    notify(reporter.log, "undo-start\t" + session.id);
    const auto before = look(host, session);
    std::map<std::size_t, std::string> failures;
    std::size_t count = 0;
    for (std::size_t number = before.size(); number-- > 0 && !stop.isCancelled();) {
        const Item& item = before[number];
        if (item.state == State::back) continue;
        const auto tell = [&](std::string_view tag, const std::string& more) {
            notify(reporter.log,
                   fmt::format("{}\t{}\t{}{}", tag, textOf(item.category), item.originalPath.native(), more));
        };
        if (item.state == State::stuck) {
            tell("stuck", "\t" + item.reason);
            continue;
        }
        try {
            bringBack(host, item);
            ++count;
            tell("put-back", "");
        } catch (const FileError& error) {
            failures[number] = reasonOf(error);
            tell("stuck", "\t" + failures[number]);
        }
    }
    auto after = look(host, session);
    for (auto& [number, reason] : failures) {
        if (after[number].state != State::waiting) continue;
        after[number].state = State::stuck;
        after[number].reason = std::move(reason);
    }
    notify(reporter.log, fmt::format("undo-done\titems={}", count));
    return after;
}

std::string summary(const std::vector<Item>& before, const std::vector<Item>& after) {
    std::int64_t back = 0;
    std::int64_t stuck = 0;
    for (std::size_t number = 0; number < after.size(); ++number) {
        if (after[number].state != State::back)
            ++stuck;
        else if (number >= before.size() || before[number].state != State::back)
            ++back;
    }
    if (back == 0 && stuck == 0) return "Everything is back already.";
    std::string text = back > 0 ? fmt::format("Put back {}.", Text::counted(back, "item")) : "Nothing was put back.";
    if (stuck > 0) text += fmt::format(" {} could not come back.", Text::counted(stuck, "item"));
    return text;
}

}  // namespace tarvik::UninstallUndo
