// The moves of `AppState`: to a drive, and back.

#include "Move/FolderMove.h"
#include "Move/MoveRun.h"
#include "Move/MoverEngine.h"
#include "Platform/Failure.h"
#include "Platform/Text.h"
#include "State/AppState.h"
#include "State/Background.h"
#include "State/JobRunner.h"
#include "State/NewestValue.h"
#include "State/ScreenText.h"

namespace tarvik {

namespace {

/// A wish that cannot be followed now, with the sentence for the user.
class Refusal : public Failure {
public:
    explicit Refusal(std::string sentence) : Failure("AppState", 0, std::move(sentence)) {}
};

/// Sets a flag for as long as it lives.
class Raised {
public:
    explicit Raised(bool& flag) : m_flag(flag) { m_flag = true; }
    ~Raised() { m_flag = false; }
    Raised(const Raised&) = delete;
    Raised& operator=(const Raised&) = delete;

private:
    bool& m_flag;
};

struct RestoreProgress {
    std::int64_t copied = 0;
    std::int64_t total = 0;
};

}  // namespace

void AppState::refuseWhenBusy() const {
    if (m_isRunning || m_isRestoring || m_isPreparing || m_isClosing)
        throw Refusal("Another item is being moved. Try again when it is done.");
}

void AppState::moveArbitraryFolder(const FilePath& folder) {
    m_flows.add(moveFolder(folder.path));
}

QCoro::Task<> AppState::moveFolder(fs::path folder) {
    if (!m_selectedDrive) throw Refusal("Select a target drive first.");
    refuseWhenBusy();
    const DriveInfo drive = *m_selectedDrive;
    std::vector<MoveJob> jobs;
    {
        const Raised preparing(m_isPreparing);
        const auto plan = [host = m_host, folder, drive] { return FolderMove::plan(host, folder, drive); };
        jobs.push_back(co_await inBackground(Priority::userInitiated, plan));
        if (m_isClosing) co_return;  // Nobody would answer any more.
        const Dialog question = FolderMove::confirmMove(jobs.front(), drive);
        const int answer = co_await m_dialogs.ask(question);
        if (answer != 0 || m_isClosing) co_return;
    }
    runJobs(std::move(jobs), drive.id, drive.mountPath, false);
}

void AppState::runJobs(std::vector<MoveJob> jobs, const std::string&, const fs::path& drivePath, bool quitRunning) {
    std::vector<JobRow> rows;
    for (const MoveJob& job : jobs) rows.push_back({job, false});
    m_jobs.replaceAll(std::move(rows));
    m_restore = {};
    emit restoreChanged();
    setRunning(true);
    clearError();
    m_flows.add(JobRunner::run(std::move(jobs), drivePath, this, quitRunning));
}

void AppState::setJobStatus(std::size_t index, const JobStatus& status) {
    if (index >= jobs().size()) return;
    JobRow row = jobs()[index];
    row.job.status = status;
    row.isLinked = status.is<JobStatus::Done>();
    updateJob(index, std::move(row));
}

void AppState::setJobProgress(std::size_t index, std::int64_t copied, std::int64_t total) {
    if (index >= jobs().size()) return;
    JobRow row = jobs()[index];
    // A report that was on its way when the job ended must not bring the job back to life.
    if (row.job.status.isFinal()) return;
    MoveRun::applyProgress(row.job, copied, total);
    updateJob(index, std::move(row));
}

void AppState::updateJob(std::size_t index, JobRow row) {
    m_jobs.update(index, std::move(row));
    emit jobsProgressChanged();
}

void AppState::finishRun() {
    // When the user leaves in the middle of a run, the jobs behind the current one have not ended.
    std::vector<MoveJob> ended;
    for (const JobRow& row : jobs())
        if (row.job.status.isFinal()) ended.push_back(row.job);
    const MoveRun::Summary summary = MoveRun::summary(ended);
    if (summary.hasFailures) {
        setError(screenText(summary.text));
    } else {
        setInfo(screenText(summary.text));
    }
    setRunning(false);
    refreshAll();
    closeWhenReady();
}

QString AppState::jobsSummary() const {
    if (jobs().empty()) return {};
    std::vector<MoveJob> all;
    for (const JobRow& row : jobs()) all.push_back(row.job);
    if (!m_isRunning) return screenText(MoveRun::summary(all).text);
    const auto ended = static_cast<std::size_t>(
        std::count_if(all.begin(), all.end(), [](const MoveJob& job) { return job.status.isFinal(); }));
    return QStringLiteral("%1 of %2").arg(std::min(ended + 1, all.size())).arg(all.size());
}

void AppState::restoreSymlink(const FilePath& link) {
    m_flows.add(restoreLink(link.path));
}

QCoro::Task<> AppState::restoreLink(fs::path link) {
    refuseWhenBusy();
    {
        const Raised preparing(m_isPreparing);
        const auto findTarget = [host = m_host, link] { return FolderMove::restoreTarget(host, link); };
        const fs::path target = co_await inBackground(Priority::userInitiated, findTarget);
        if (m_isClosing) co_return;  // Nobody would answer any more.
        const Dialog question = FolderMove::confirmRestore(link, target);
        const int answer = co_await m_dialogs.ask(question);
        if (answer != 0 || m_isClosing) co_return;
    }
    m_restore = {};
    m_restore.label = screenPath(link.filename());
    setRestoring(true);

    const NewestValue<RestoreProgress> progress([state = QPointer(this)](const RestoreProgress& newest) {
        if (!state) return;
        state->m_restore.copied = newest.copied;
        state->m_restore.total = std::max(newest.total, state->m_restore.total);
        emit state->restoreChanged();
    });
    const auto restore = [host = m_host, link, progress] {
        MoverEngine::restore(host, link, [&](std::int64_t copied, std::int64_t total) {
            progress.send({copied, total});
        });
    };
    QString failure;
    try {
        co_await inBackground(Priority::userInitiated, restore);
    } catch (const std::exception& thrown) {
        failure = screenText(thrown.what());
    }
    if (failure.isEmpty()) {
        endRestore(QStringLiteral("Restored ") + m_restore.label, false);
    } else {
        endRestore(failure, true);
    }
}

void AppState::endRestore(const QString& outcome, bool hasFailed) {
    m_restore.outcome = outcome;
    m_restore.hasFailed = hasFailed;
    setRestoring(false);
    if (hasFailed) {
        setError(outcome);
    } else {
        setInfo(outcome);
        refreshAll();
    }
    closeWhenReady();
}

double AppState::restoreFraction() const {
    if (!m_isRestoring && !m_restore.outcome.isEmpty() && !m_restore.hasFailed) return 1;
    if (m_restore.total < 1) return 0;
    return std::min(1.0, static_cast<double>(m_restore.copied) / static_cast<double>(m_restore.total));
}

QString AppState::restoreBytes() const {
    return m_restore.total < 1 ? QString() : bytesText(m_restore.copied, m_restore.total);
}

}  // namespace tarvik
