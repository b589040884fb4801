#include "CommandLine/FolderActs.h"

#include "CommandLine/Columns.h"
#include "CommandLine/DriveActs.h"
#include "CommandLine/ProgressDisplay.h"
#include "CommandLine/Records.h"
#include "CommandLine/Signals.h"
#include "CommandLine/Terminal.h"
#include "Move/ByteProgress.h"
#include "Move/FolderMove.h"
#include "Move/MoveRun.h"
#include "Move/MoverEngine.h"
#include "Platform/Failure.h"
#include "Platform/Files.h"
#include "Platform/SizeCalculator.h"

#include <mutex>
#include <utility>

namespace tarvik::CommandLine::FolderActs {

namespace {

/// The question before anything is changed. @throws Failure when the answer is no.
void confirm(const Dialog& dialog, bool yes) {
    if (!yes && !Terminal::ask(dialog)) throw FolderMove::cancelled();
}

void confirmRestore(const FolderMove::WayBack& wayBack, bool yes) {
    if (yes && !wayBack.isOwn)
        throw Failure("CommandLine", 1,
                      FolderMove::foreign(wayBack.link) +
                          " Leave out --yes and answer the question to bring back what it leads to.");
    confirm(FolderMove::confirmRestore(wayBack), yes);
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

/// Runs an act, which tells in its outcome what it comes to know, and prints how it ended, also when it was refused
/// before it began. @throws Failure when it failed, WrongUse as the act does, with nothing printed.
template <typename Act>
void report(Format format, const Act& act) {
    Outcome outcome;
    try {
        act(outcome);
    } catch (const WrongUse&) {
        throw;
    } catch (const Failure& failure) {
        outcome.failure = failure.description();
    }
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
            [this](std::size_t, const ByteProgress& progress) { take(progress); });
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
    }

    void take(const ByteProgress& progress) {
        {
            const std::lock_guard lock(m_mutex);
            if (!MoveRun::applyProgress(m_job, progress)) return;
        }
        m_display.progress(progress);
    }

    std::mutex m_mutex;
    MoveJob m_job;
    ProgressDisplay m_display;
};

}  // namespace

void move(const Host& host, const Options& options) {
    report(options.format, [&](Outcome& outcome) {
        outcome.source = Files::standardized(options.path);
        outcome.label = outcome.source.filename();
        const auto drive = DriveActs::chosen(host, options.drive, options.verb);
        const auto plan = FolderMove::plan(host, options.path, drive);
        outcome.destination = plan.destination;
        outcome.bytes = plan.bytesTotal;
        confirm(FolderMove::confirmMove(plan, drive), options.yes);

        WatchedJob watched(plan, ProgressDisplay::outputFor(options.format));
        watched.run(host, drive.mountPath);
        const auto& job = watched.job();
        outcome.bytes = job.bytesTotal;
        outcome.sentence = FolderMove::moved(job);
        if (const auto* failed = job.status.get<JobStatus::Failed>()) outcome.failure = failed->description;
    });
}

void restore(const Host& host, const Options& options) {
    report(options.format, [&](Outcome& outcome) {
        outcome.destination = Files::standardized(options.path);
        outcome.label = outcome.destination.filename();
        const auto wayBack = FolderMove::planRestore(host, options.path);
        outcome.source = wayBack.target;
        outcome.sentence = FolderMove::movedBack(wayBack);
        confirmRestore(wayBack, options.yes);

        const std::int64_t size = outcome.bytes = SizeCalculator::size(host, wayBack.target);
        ProgressDisplay display(ProgressDisplay::outputFor(options.format), outcome.label);
        const SignalGuard guard;
        // The first report comes late: until then the bar stands at its beginning.
        display.progress({0, size});
        display.step("moving back");
        MoverEngine::restore(host, wayBack.link, [&](std::int64_t copied, std::int64_t total) {
            display.progress({copied, total});
        });
    });
}

}  // namespace tarvik::CommandLine::FolderActs
