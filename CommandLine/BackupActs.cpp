#include "CommandLine/BackupActs.h"

#include "Backups/BackupPlan.h"
#include "CommandLine/DriveActs.h"
#include "CommandLine/Output/Columns.h"
#include "CommandLine/Output/ProgressDisplay.h"
#include "CommandLine/Output/Records.h"
#include "CommandLine/Output/Terminal.h"
#include "CommandLine/Signals.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <utility>

namespace tarvik::CommandLine::BackupActs {

namespace {

Record recordOf(const BackupRecord& backup) {
    return {{"id", backup.id},
            {"path", backup.rootPath.native()},
            {"createdAt", backup.id.empty() ? std::string() : Text::isoDate(backup.createdAt)},
            {"sourceFileCount", backup.sourceFileCount},
            {"backupFileCount", backup.backupFileCount}};
}

std::string tableOf(const std::vector<BackupRecord>& backups) {
    using Columns::Align;
    std::vector<std::vector<std::string>> rows;
    rows.reserve(backups.size());
    for (const auto& backup : backups)
        rows.push_back({Columns::oneLine(backup.id), Text::date(backup.createdAt),
                        fmt::to_string(backup.backupFileCount), Columns::oneLine(backup.rootPath.native())});
    return Columns::table({{"Backup"}, {"Complete since"}, {"Files in folders", Align::right}, {"Where"}}, rows);
}

/// A record holds the path that its drive had. The drive may be mounted elsewhere now.
BackupRecord asMountedNow(BackupRecord backup, const DriveInfo& drive) {
    const auto place = AppStorageNames::backupsRootOn(drive.mountPath) / backup.rootPath.filename();
    if (Files::exists(place)) backup.rootPath = place;
    return backup;
}

void sayWhatIsUnfinished(const Host& host, const DriveInfo& drive) {
    const auto names = BackupService::unfinished(host, drive.mountPath);
    if (names.empty()) return;
    Terminal::say(fmt::format("No complete backup, in {}: {}.",
                              AppStorageNames::backupsRootOn(drive.mountPath).native(), fmt::join(names, ", ")));
}

/// How a backup ended.
struct Outcome {
    /// After a failure only its path is known: where the backup would stand.
    BackupRecord backup;
    /// Why it failed; empty when it is done.
    std::string failure;
};

void print(const BackupPlan::Plan& plan, const Outcome& outcome, Format format) {
    const auto sentence = BackupPlan::done(plan, outcome.backup);
    const bool isDone = outcome.failure.empty();
    if (format == Format::human) {
        // After a failure the failure itself is the message.
        if (isDone) Terminal::writeLine(sentence);
        return;
    }
    auto record = recordOf(outcome.backup);
    record.insert(record.end(), {{"bytes", plan.bytesTotal},
                                 {"status", std::string(isDone ? "done" : "failed")},
                                 {"description", isDone ? sentence : outcome.failure}});
    Terminal::writeResult(format == Format::tsv ? tsv(record) : toml(record));
}

BackupRecord make(const Host& host, const BackupPlan::Plan& plan, Format format) {
    const auto& sources = plan.sources;
    const auto label =
        sources.size() == 1 ? sources.front().filename().native() : Text::counted(std::ssize(sources), "item");
    ProgressDisplay display(ProgressDisplay::outputFor(format), label);
    const SignalGuard guard;
    // The first report comes late: until then the bar stands at its beginning.
    display.progress({0, plan.bytesTotal});
    display.step("backing up");
    return BackupPlan::run(
        host, plan,
        [&](std::int64_t copied, std::int64_t total) {
            display.progress({copied, total});
        },
        SignalGuard::isAskedToEnd);
}

/// Where the copies stay that a failed backup has made, when it got so far.
void sayWhereCopiesStay(const Host& host, const fs::path& mountPath, const std::vector<std::string>& unfinishedBefore) {
    for (const auto& name : BackupService::unfinished(host, mountPath))
        if (std::find(unfinishedBefore.begin(), unfinishedBefore.end(), name) == unfinishedBefore.end())
            Terminal::say(fmt::format("What was copied so far stays in {}.",
                                      (AppStorageNames::backupsRootOn(mountPath) / name).native()));
}

}  // namespace

void create(const Host& host, const Options& options) {
    const auto drive = DriveActs::chosen(host, options.drive, options.verb);
    const auto plan = BackupPlan::plan(host, options.paths, drive);
    Terminal::confirm(BackupPlan::confirm(plan), options.yes);
    if (options.yes)
        for (const auto& sentence : plan.leftOut) Terminal::say(sentence);

    const auto unfinishedBefore = BackupService::unfinished(host, drive.mountPath);
    Outcome outcome{.backup = {.rootPath = AppStorageNames::backupsRootOn(drive.mountPath)}};
    try {
        outcome.backup = make(host, plan, options.format);
    } catch (const Failure& failure) {
        outcome.failure = failure.description();
    }
    print(plan, outcome, options.format);
    if (!outcome.failure.empty()) {
        sayWhereCopiesStay(host, drive.mountPath, unfinishedBefore);
        throw Failure("CommandLine", 1, outcome.failure);
    }
    if (const auto remark = BackupPlan::remark(outcome.backup)) Terminal::say(*remark);
}

void list(const Host& host, const Options& options) {
    const auto drive = DriveActs::named(host, options.drive, options.verb);
    std::vector<BackupRecord> backups;
    for (auto& backup : BackupService::list(host, drive.mountPath))
        backups.push_back(asMountedNow(std::move(backup), drive));

    sayWhatIsUnfinished(host, drive);
    if (options.format == Format::human) {
        if (backups.empty()) return Terminal::say(fmt::format("There are no backups on {}.", drive.name));
        return Terminal::writeResult(tableOf(backups));
    }
    std::vector<Record> records;
    records.reserve(backups.size());
    for (const auto& backup : backups) records.push_back(recordOf(backup));
    if (options.format == Format::toml) return Terminal::writeResult(toml("backups", records));
    Terminal::writeResult(tsv(namesOf(recordOf({})), records));
}

}  // namespace tarvik::CommandLine::BackupActs
