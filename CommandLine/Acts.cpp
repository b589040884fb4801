#include "CommandLine/Acts.h"

#include "CommandLine/Columns.h"
#include "CommandLine/ProgressDisplay.h"
#include "CommandLine/Records.h"
#include "CommandLine/Signals.h"
#include "CommandLine/Terminal.h"
#include "Move/DriveChoice.h"
#include "Move/FolderMove.h"
#include "Move/MoveRun.h"
#include "Move/MoverEngine.h"
#include "Move/SizeCalculator.h"
#include "Platform/DriveScanner.h"
#include "Platform/Failure.h"
#include "Platform/Files.h"
#include "Platform/Text.h"

#include <fmt/format.h>

#include <mutex>
#include <utility>

namespace tarvik::CommandLine::Acts {

namespace {

constexpr std::size_t widestName = 40;

std::string kindOf(const DriveInfo& drive) {
    if (drive.isBoot()) return "boot";
    return drive.isInternal ? "internal" : "external";
}

Record recordOf(const DriveInfo& drive) {
    return {
        {"name", drive.name},           {"mountPath", drive.mountPath.native()},   {"totalBytes", drive.totalBytes},
        {"freeBytes", drive.freeBytes}, {"format", drive.filesystem.value_or("")}, {"kind", kindOf(drive)},
        {"writable", drive.isWritable},
    };
}

std::string tableOf(const std::vector<DriveInfo>& drives) {
    using Columns::Align;
    // A capacity of 0 means that the system does not tell.
    const auto size = [](std::int64_t bytes, const DriveInfo& drive) {
        return drive.totalBytes == 0 ? std::string("unknown") : Text::byteCount(bytes);
    };
    std::vector<std::vector<std::string>> rows;
    for (const auto& drive : drives)
        rows.push_back({Columns::cut(Columns::oneLine(drive.name), widestName),
                        Columns::oneLine(drive.mountPath.native()), size(drive.totalBytes, drive),
                        size(drive.freeBytes, drive), Columns::oneLine(drive.filesystem.value_or("")), kindOf(drive),
                        drive.isWritable ? "yes" : "no"});
    return Columns::table(
        {{"Name"}, {"Mounted at"}, {"Size", Align::right}, {"Free", Align::right}, {"Format"}, {"Kind"}, {"Writable"}},
        rows);
}

void listDrives(const Host& host, Format format) {
    const auto drives = DriveScanner::scan(host);
    if (format == Format::human) {
        if (drives.empty()) return Terminal::say("No drives are mounted.");
        return Terminal::writeResult(tableOf(drives));
    }
    std::vector<Record> records;
    for (const auto& drive : drives) records.push_back(recordOf(drive));
    if (format == Format::toml) return Terminal::writeResult(toml("drives", records));
    std::vector<std::string> names;
    for (const auto& [name, value] : recordOf({})) names.push_back(name);
    Terminal::writeResult(tsv(names, records));
}

/// The question before anything is changed. @throws Failure when the answer is no.
void confirm(const Dialog& dialog, bool yes) {
    if (!yes && !Terminal::ask(dialog)) throw Failure("CommandLine", 1, "Cancelled. Nothing was changed.");
}

ProgressDisplay::Output displayFor(Format format) {
    return format == Format::human ? ProgressDisplay::standardError() : ProgressDisplay::silent();
}

/// How an act ended, for a program to read.
struct Outcome {
    std::string label;
    fs::path source, destination;
    std::int64_t bytes = 0;
    /// Why the act failed; empty when it is done.
    std::string failure;
    /// What a person reads.
    std::string sentence;
};

void print(const Outcome& outcome, Format format) {
    if (format == Format::human) {
        // After a failure the failure itself is the message.
        if (outcome.failure.empty()) Terminal::writeResult(Columns::printable(outcome.sentence) + "\n");
        return;
    }
    const Record record = {
        {"label", outcome.label},
        {"source", outcome.source.native()},
        {"destination", outcome.destination.native()},
        {"bytes", outcome.bytes},
        {"status", outcome.failure.empty() ? std::string("done") : std::string("failed")},
        {"description", outcome.failure.empty() ? outcome.sentence : outcome.failure},
    };
    Terminal::writeResult(format == Format::tsv ? tsv(record) : toml(record));
}

void printAndThrowIfFailed(const Outcome& outcome, Format format) {
    print(outcome, format);
    if (!outcome.failure.empty()) throw Failure("CommandLine", 1, outcome.failure);
}

/// The one job of a run: takes the reports of every thread in, and shows them.
class WatchedJob {
public:
    WatchedJob(MoveJob job, ProgressDisplay::Output output)
        : m_job(std::move(job)), m_display(std::move(output), m_job.label) {}

    void run(const Host& host, const fs::path& drivePath) {
        const SignalGuard guard;
        const auto jobs = std::vector{m_job};
        MoveRun::run(
            host, jobs, drivePath, false, [this](std::size_t, const JobStatus& status) { take(status); },
            [this](std::size_t, std::int64_t copied, std::int64_t total) { take(copied, total); });
        m_display.end();
    }

    const MoveJob& job() const { return m_job; }

private:
    void take(const JobStatus& status) {
        {
            const std::lock_guard lock(m_mutex);
            m_job.status = status;
        }
        if (status.is<JobStatus::Copying>()) m_display.step("copying");
        if (status.is<JobStatus::Verifying>()) m_display.step("verifying");
        if (status.is<JobStatus::Linking>()) m_display.step("linking");
        if (status.is<JobStatus::Done>()) m_display.step("done");
    }

    void take(std::int64_t copied, std::int64_t total) {
        {
            const std::lock_guard lock(m_mutex);
            // A late report must not bring a copy back that has ended.
            if (!m_job.status.is<JobStatus::Copying>()) return;
            MoveRun::applyProgress(m_job, copied, total);
        }
        m_display.progress(copied, total);
    }

    std::mutex m_mutex;
    MoveJob m_job;
    ProgressDisplay m_display;
};

DriveInfo chosenDrive(const Host& host, const std::string& wanted) {
    const auto drives = DriveScanner::scan(host);
    const auto drive = [&] {
        try {
            return DriveChoice::named(drives, wanted);
        } catch (const Failure& failure) {
            throw WrongUse(failure.description());
        }
    }();
    DriveChoice::requireTarget(drive);
    return drive;
}

void moveFolder(const Host& host, const Options& options) {
    const auto drive = chosenDrive(host, options.drive);
    const auto plan = FolderMove::plan(host, Files::standardized(options.path), drive);
    confirm(FolderMove::confirmMove(plan, drive), options.yes);

    WatchedJob watched(plan, displayFor(options.format));
    watched.run(host, drive.mountPath);

    const auto& job = watched.job();
    const auto* failed = job.status.get<JobStatus::Failed>();
    printAndThrowIfFailed({job.label, job.source, job.destination, job.bytesTotal,
                           failed ? failed->description : std::string(), MoveRun::summary({job}).text},
                          options.format);
}

void moveRestore(const Host& host, const Options& options) {
    const auto link = Files::standardized(options.path);
    const auto target = FolderMove::restoreTarget(host, link);
    confirm(FolderMove::confirmRestore(link, target), options.yes);

    const auto name = link.filename().native();
    Outcome outcome{name, target, link, 0, {}, fmt::format("Restored {}", name)};
    try {
        ProgressDisplay display(displayFor(options.format), name);
        const SignalGuard guard;
        display.step("moving back");
        MoverEngine::restore(host, link,
                             [&](std::int64_t copied, std::int64_t total) { display.progress(copied, total); });
        display.step("done");
        outcome.bytes = SizeCalculator::size(host, link);
    } catch (const Failure& failure) {
        outcome.failure = failure.description();
    }
    printAndThrowIfFailed(outcome, options.format);
}

}  // namespace

void perform(const Host& host, const Options& options) {
    switch (options.verb) {
        case Options::Verb::drives:
            return listDrives(host, options.format);
        case Options::Verb::moveFolder:
            return moveFolder(host, options);
        case Options::Verb::moveRestore:
            return moveRestore(host, options);
    }
}

}  // namespace tarvik::CommandLine::Acts
