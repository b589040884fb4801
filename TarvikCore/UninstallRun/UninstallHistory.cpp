#include "UninstallRun/UninstallHistory.h"

#include "Platform/Files/Files.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Platform/Machine/SilentVolumes.h"
#include "UninstallRun/UninstallJournalFile.h"
#include "UninstallRun/UninstallSearch.h"
#include "UninstallRun/UninstallSessionId.h"
#include "UninstallRun/UninstallSessionStore.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace tarvik::UninstallHistory {

namespace {

using MovedItem = AppUninstallSession::MovedItem;

/// What the disk tells of an item of which the run could not tell any more. Only what stands at its place has stayed:
/// what is found nowhere may be on a drive that is away, or may have been removed since.
void findOut(const Host& host, UninstallSearch& search, const UninstallJournal::Item& noted, MovedItem& item) {
    if (SilentVolumes::hold(host, noted.place.parent_path())) {
        item.succeeded = true;
        return;
    }
    const auto standing = ItemIdentity::of(noted.place);
    item.succeeded = !standing || !noted.identity || !standing->isSame(*noted.identity);
    if (!item.succeeded || !noted.identity) return;
    item.trashedTo = search.inTrash(noted.place, *noted.identity);
    if (!item.trashedTo && UninstallSearch::inStash(noted.path, noted.identity, {}))
        item.stashedTo = UninstallSearch::stashBeside(noted.path);
}

/// Whether a later run has taken the item away: this one had not come to it.
bool wentLater(const std::vector<AppUninstallSession>& sessions, const UninstallJournal& journal,
               const fs::path& path) {
    return std::any_of(sessions.begin(), sessions.end(), [&](const AppUninstallSession& session) {
        return session.createdAt > journal.startedAt && session.appPath == journal.appPath &&
               std::any_of(session.movedItems.begin(), session.movedItems.end(),
                           [&](const MovedItem& item) { return item.succeeded && item.originalPath == path; });
    });
}

std::string leftBecause(const std::string& reason) {
    return fmt::format("It was left as it is: {}.", reason);
}

AppUninstallSession sessionOf(const Host& host, UninstallSearch& search, const UninstallJournals::Found& found,
                              const std::vector<AppUninstallSession>& recorded) {
    const UninstallJournal& journal = found.journal;
    AppUninstallSession session{.id = UninstallSessionId::ofInterrupted(found.name),
                                .appPath = journal.appPath,
                                .appName = journal.appName,
                                .bundleIdentifier = journal.bundleIdentifier,
                                .createdAt = journal.startedAt,
                                .forgottenReceipts = journal.forgottenReceipts};
    for (const auto& noted : journal.items) {
        MovedItem item{.originalPath = noted.path, .category = noted.category, .sizeBytes = noted.sizeBytes};
        if (!noted.reasonToStay.empty()) item.error = leftBecause(noted.reasonToStay);
        if (noted.end) {
            item.trashedTo = noted.end->trashedTo;
            item.stashedTo = noted.end->stashedTo;
            item.succeeded = noted.end->succeeded;
        } else if (!wentLater(recorded, journal, noted.path)) {
            findOut(host, search, noted, item);
        }
        session.movedItems.push_back(std::move(item));
    }
    return session;
}

/// The record does not tell why an item has stayed; the journal beside it does.
void addReasons(const fs::path& root, AppUninstallSession& session) {
    const auto hasStayed = [](const MovedItem& item) { return !item.succeeded && !item.error; };
    if (std::none_of(session.movedItems.begin(), session.movedItems.end(), hasStayed)) return;
    const auto journal = UninstallJournals::ofSession(root, session.id);
    if (!journal) return;
    for (MovedItem& item : session.movedItems) {
        const auto* const noted = hasStayed(item) ? journal->itemAt(item.originalPath) : nullptr;
        if (noted && !noted->reasonToStay.empty()) item.error = leftBecause(noted->reasonToStay);
    }
}

/// A record under another name than its own is none that a run has written, nor is one that bears the name of an
/// interrupted run.
bool isRecordOf(const AppUninstallSession& session, const std::string& id) {
    return session.id == id && !session.dryRun && UninstallSessionId::journalNameOf(id).empty();
}

}  // namespace

Host knownMachine(const Host& host) {
    return Files::names(AppStorageNames::uninstallSessionRoot(host)).empty() ? host : SilentVolumes::noted(host);
}

std::vector<AppUninstallSession> list(const Host& host) {
    const fs::path root = AppStorageNames::uninstallSessionRoot(host);
    // The journals before the records: a run that ends meanwhile is among these.
    auto interrupted = UninstallJournals::interrupted(root);
    std::vector<AppUninstallSession> sessions;
    // What is left of these is the journal that stands beside them.
    std::vector<std::string> damaged;
    for (const std::string& name : Files::names(root)) {
        if (!UninstallSessionId::isOne(name)) continue;
        auto session = UninstallSessionStore::load(root / name);
        if (session && isRecordOf(*session, name))
            sessions.push_back(std::move(*session));
        else if (!session && UninstallSessionId::journalNameOf(name).empty())
            damaged.push_back(name);
    }
    std::erase_if(interrupted, [&](const UninstallJournals::Found& found) {
        return std::any_of(sessions.begin(), sessions.end(), [&](const AppUninstallSession& session) {
            return UninstallJournals::isRecordOf(session, found.journal);
        });
    });
    UninstallSearch search(host);
    std::vector<AppUninstallSession> unfinished;
    unfinished.reserve(interrupted.size() + damaged.size());
    for (const auto& found : interrupted) unfinished.push_back(sessionOf(host, search, found, sessions));
    for (const std::string& id : damaged) {
        const auto journal = UninstallJournals::ofSession(root, id);
        if (!journal || journal->sessionId != id) continue;
        unfinished.push_back(sessionOf(host, search, {id, *journal}, sessions));
        unfinished.back().id = id;
    }
    std::move(unfinished.begin(), unfinished.end(), std::back_inserter(sessions));
    for (AppUninstallSession& session : sessions) addReasons(root, session);
    std::stable_sort(sessions.begin(), sessions.end(),
                     [](const AppUninstallSession& one, const AppUninstallSession& other) {
                         return one.createdAt > other.createdAt;
                     });
    return sessions;
}

std::optional<AppUninstallSession> find(const Host& host, const std::string& id) {
    if (!UninstallSessionId::isOne(id)) return std::nullopt;
    const fs::path root = AppStorageNames::uninstallSessionRoot(host);
    if (auto session = UninstallSessionStore::find(id, root); session && isRecordOf(*session, id)) {
        addReasons(root, *session);
        return session;
    }
    for (AppUninstallSession& each : list(host))
        if (each.id == id) return std::move(each);
    return std::nullopt;
}

}  // namespace tarvik::UninstallHistory
