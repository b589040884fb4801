#include "UninstallRun/AppUninstallRunner.h"

#include "Applications/ExternalTarget.h"
#include "Copying/FileStash.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Basics/Notify.h"
#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Platform/Machine/KeptAwake.h"
#include "Platform/Machine/TrashCan.h"
#include "Platform/Processes/CommandRunner.h"
#include "Platform/Storage/DrivePath.h"
#include "Platform/Text/Text.h"
#include "Uninstall/AppUninstallPlanner.h"
#include "Uninstall/PackageReceipts.h"
#include "Uninstall/UninstallRefusal.h"
#include "UninstallRun/AppUninstallError.h"
#include "UninstallRun/UninstallCheck.h"
#include "UninstallRun/UninstallJournalFile.h"
#include "UninstallRun/UninstallLock.h"
#include "UninstallRun/UninstallSessionId.h"
#include "UninstallRun/UninstallSessionStore.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <iterator>
#include <string_view>
#include <thread>
#include <unordered_map>
#include <utility>

namespace tarvik::AppUninstallRunner {

namespace {

using MovedItem = AppUninstallSession::MovedItem;

std::vector<const UninstallCandidate*> chosenOf(const AppUninstallPlan& plan, const UninstallSelection& selection,
                                                const std::optional<std::set<std::string>>& selectedPaths) {
    std::vector<const UninstallCandidate*> chosen;
    for (const UninstallCandidate& candidate : plan.candidates)
        if (selectedPaths ? selectedPaths->contains(candidate.path.native())
                          : AppUninstallPlanner::effectiveSelected(candidate, plan.app, selection))
            chosen.push_back(&candidate);
    return chosen;
}

MovedItem itemOf(const UninstallCandidate& candidate) {
    return {.originalPath = candidate.path, .category = candidate.category, .sizeBytes = candidate.sizeBytes};
}

/// Whether it is certain that nothing stands there: what is on a drive that is away may come back with it.
bool isCertainlyGone(const Host& host, const fs::path& path) {
    if (ItemIdentity::of(path) || (errno != ENOENT && errno != ENOTDIR)) return false;
    const auto folder = Files::resolved(path.parent_path());
    return folder && !DrivePath::absent(host, *folder / path.filename());
}

/// The Trash has refused it.
MovedItem setAside(const Host& host, const UninstallCandidate& candidate, const fs::path& path) {
    using End = Disposal::Outcome::End;
    MovedItem item = itemOf(candidate);
    const Disposal::Outcome outcome = FileStash::moveAside(host, path, "uninstall");
    item.stashedTo = path.parent_path() / ".TarvikTrash";
    if (outcome.end == End::trashed) item.trashedTo = outcome.place;
    item.succeeded = outcome.end == End::trashed || outcome.end == End::setAside || isCertainlyGone(host, path);
    return item;
}

/// Nothing when the Trash refuses it; an empty path when the Trash does not tell where it stands.
std::optional<fs::path> trashed(const Host& host, const fs::path& path) {
    try {
        return host.trash->moveToTrash(path);
    } catch (const FileError&) {
        return std::nullopt;
    }
}

MovedItem moved(const Host& host, const UninstallCandidate& candidate, const AppUninstallReporter& reporter) {
    // A slash at the end of a path would lead through a link.
    const fs::path path = Files::standardized(candidate.path);
    const auto tell = [&](std::string_view tag) {
        notify(reporter.log, fmt::format("{}\t{}\t{}", tag, textOf(candidate.category), candidate.path.native()));
    };
    auto place = trashed(host, path);
    if (!place) {
        MovedItem item = setAside(host, candidate, path);
        tell("stash");
        return item;
    }
    MovedItem item = itemOf(candidate);
    item.succeeded = true;
    if (!place->empty()) item.trashedTo = std::move(*place);
    tell("trash");
    return item;
}

/// What becomes of the item that has this number in the journal.
MovedItem movedUnlessChanged(const Host& host, UninstallCheck& check, const UninstallCandidate& candidate,
                             std::size_t number, UninstallJournalFile& journal, const AppUninstallReporter& reporter) {
    if (const auto reason = check.reasonToStay(candidate)) {
        notify(reporter.log,
               fmt::format("stays\t{}\t{}\t{}", textOf(candidate.category), candidate.path.native(), *reason));
        journal.note(UninstallJournal::lineOf(number, {}) + UninstallJournal::lineOfStay(number, *reason));
        return itemOf(candidate);
    }
    MovedItem item = moved(host, candidate, reporter);
    journal.note(UninstallJournal::lineOf(number, {item.succeeded, item.trashedTo, item.stashedTo}));
    return item;
}

/// An application by its link and by its copy on a drive is one application.
std::vector<fs::path> pathsToLock(const AppRecord& app) {
    std::vector<fs::path> places = {app.bundlePath};
    if (auto target = ExternalTarget::of(app)) places.push_back(std::move(*target));
    return places;
}

/// The items as they stand now: by that they are found again, wherever they have gone.
UninstallJournal journalFor(const Host& host, const AppUninstallPlan& plan,
                            const std::vector<const UninstallCandidate*>& chosen) {
    UninstallJournal journal{.appPath = plan.app.bundlePath,
                             .appName = plan.app.displayName,
                             .bundleIdentifier = plan.app.bundleIdentifier,
                             .startedAt = host.now()};
    journal.items.reserve(chosen.size());
    // Most items share a few folders; texts are compared much faster than paths.
    std::unordered_map<std::string, std::string> realFolders;
    for (const UninstallCandidate* candidate : chosen) {
        if (candidate->category == UninstallCategory::receipts) continue;
        const fs::path path = Files::standardized(candidate->path);
        const std::string& text = path.native();
        const std::size_t slash = text.rfind('/');
        const std::string folder = text.substr(0, slash);
        auto [real, isNew] = realFolders.try_emplace(folder);
        if (isNew) real->second = Files::resolved(folder + "/").value_or(folder).native();
        UninstallJournal::Item& item = journal.items.emplace_back();
        item.path = path;
        if (real->second == folder)
            item.place = path;
        else
            item.place = fs::path(real->second) / text.substr(slash + 1);
        item.category = candidate->category;
        item.sizeBytes = candidate->sizeBytes;
        item.identity = ItemIdentity::of(path);
    }
    return journal;
}

/// Gives the record this second's id, or that of the next one that is free. @returns its folder. @throws FileError.
fs::path claimFolder(const Host& host, const fs::path& root, AppUninstallSession& session) {
    constexpr auto pause = std::chrono::milliseconds(20);
    constexpr int pausesInThreeSeconds = 150;
    for (int turn = 0;; ++turn) {
        session.createdAt = host.now();
        session.id = UninstallSessionId::at(session.createdAt);
        fs::path folder = root / session.id;
        if (Files::createNewFolder(folder)) return folder;
        if (turn == pausesInThreeSeconds) throw FileError("create the folder", folder, EEXIST);
        std::this_thread::sleep_for(pause);
    }
}

/// Writes the record and lets the journal go.
void record(const Host& host, const fs::path& root, AppUninstallSession& session, UninstallJournalFile& journal) {
    const fs::path folder = claimFolder(host, root, session);
    journal.note(UninstallJournal::lineOfSession(session.id));
    journal.flush();
    try {
        UninstallSessionStore::save(session, root);
    } catch (...) {
        ignoringFailure([&] { Files::removeEmptyFolder(folder); });
        throw;
    }
    journal.settleIn(folder);
}

[[noreturn]] void throwUnrecorded(const FileError& failure, const AppUninstallSession& session,
                                  const UninstallJournalFile& journal) {
    const auto count = std::count_if(session.movedItems.begin(), session.movedItems.end(),
                                     [](const MovedItem& item) { return item.succeeded; });
    std::string text = fmt::format("{} {} removed, but there is no record of it: {}.", Text::counted(count, "item"),
                                   count == 1 ? "was" : "were", failure.description());
    if (journal.isFound())
        text += " The list of past uninstalls shows it as interrupted, and what went can be put back.";
    throw Failure("AppUninstall", failure.code(), std::move(text));
}

}  // namespace

MovedItem handleFile(const Host& host, const UninstallCandidate& candidate, bool dryRun,
                     const AppUninstallReporter& reporter) {
    if (!dryRun) return moved(host, candidate, reporter);
    notify(reporter.log, fmt::format("dry-trash\t{}\t{}", textOf(candidate.category), candidate.path.native()));
    MovedItem item = itemOf(candidate);
    item.succeeded = true;
    return item;
}

void handleReceipt(const Host& host, const std::string& identifier, bool dryRun, const AppUninstallReporter& reporter,
                   std::vector<std::string>& forgotten) {
    if (dryRun) {
        notify(reporter.log, "dry-forget-receipt\t" + identifier);
        forgotten.push_back(identifier);
        return;
    }
    const CommandResult result = CommandRunner::run(host.tools.pkgutil, {"--forget", identifier});
    if (result.succeeded()) {
        notify(reporter.log, "forget-receipt\t" + identifier);
        forgotten.push_back(identifier);
        // Without the rights of root a Mac's may say that a receipt is forgotten which it could not remove.
        if (!PackageReceipts::named(host, identifier).empty()) notify(reporter.log, "receipt-stays\t" + identifier);
    } else {
        notify(reporter.log, fmt::format("forget-receipt-fail\t{}\t{}", identifier, Text::trimmed(result.stderr)));
    }
}

AppUninstallSession run(const Host& host, const AppUninstallPlan& plan, const UninstallSelection& selection,
                        bool dryRun, const std::optional<std::set<std::string>>& selectedPaths,
                        const AppUninstallReporter& reporter, const Cancellation& stop) {
    const AppRecord& app = plan.app;
    if (app.kind == AppRecordKind::systemRisky)
        throw AppUninstallError::refused("Refusing to uninstall system app: " + app.bundlePath.native());
    if (auto refusal = UninstallRefusal::of(host, app.bundlePath))
        throw AppUninstallError::refused(*std::move(refusal));
    const auto chosen = chosenOf(plan, selection, selectedPaths);
    const fs::path root = AppStorageNames::uninstallSessionRoot(host);
    std::vector<UninstallLock> locks;
    std::optional<UninstallJournalFile> journal;
    std::optional<KeptAwake> awake;
    if (!dryRun) {
        locks = UninstallLock::takeAll(root, pathsToLock(app), app.displayName);
        UninstallJournals::settle(root);
        journal.emplace(UninstallJournalFile::begin(root, journalFor(host, plan, chosen)));
        awake.emplace(host, "An application is being uninstalled");
    }
    notify(reporter.log, fmt::format("uninstall-start\t{}\tdry={}", app.bundlePath.native(), dryRun));

    AppUninstallSession session{.appPath = app.bundlePath,
                                .appName = app.displayName,
                                .bundleIdentifier = app.bundleIdentifier,
                                .dryRun = dryRun};
    UninstallCheck check(host, app);
    for (const UninstallCandidate* candidate : chosen) {
        if (stop.isCancelled()) break;
        if (candidate->category == UninstallCategory::receipts) {
            const auto before = session.forgottenReceipts.size();
            handleReceipt(host, candidate->path.native(), dryRun, reporter, session.forgottenReceipts);
            if (journal && session.forgottenReceipts.size() > before)
                journal->note(UninstallJournal::lineOfReceipt(candidate->path.native()));
        } else if (dryRun) {
            session.movedItems.push_back(handleFile(host, *candidate, dryRun, reporter));
        } else {
            session.movedItems.push_back(
                movedUnlessChanged(host, check, *candidate, session.movedItems.size(), *journal, reporter));
        }
    }

    if (dryRun) {
        session.createdAt = host.now();
        session.id = UninstallSessionId::at(session.createdAt);
    } else {
        try {
            record(host, root, session, *journal);
        } catch (const FileError& failure) {
            throwUnrecorded(failure, session, *journal);
        }
        notify(reporter.log, "session\t" + session.id);
    }
    notify(reporter.log, fmt::format("uninstall-done\titems={}\treceipts={}", session.movedItems.size(),
                                     session.forgottenReceipts.size()));
    return session;
}

}  // namespace tarvik::AppUninstallRunner
