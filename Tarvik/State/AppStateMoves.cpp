// The moves of `AppState`: to a drive, and back.

#include "Move/FolderMove.h"
#include "Move/MoveRun.h"
#include "Move/MoverEngine.h"
#include "Platform/Failure.h"
#include "State/AppState.h"
#include "State/Background.h"
#include "State/Dialogs.h"
#include "State/JobRunner.h"
#include "State/NewestValue.h"
#include "State/Preparing.h"
#include "State/ScreenText.h"

#include <QPointer>

#include <algorithm>
#include <iterator>
#include <utility>

namespace tarvik {

void AppState::refuseWhenBusy() const {
    if (isBusy() || m_isClosing) throw Refusal("Another item is being moved. Try again when it is done.");
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
        const Raised preparing([this](bool isPreparing) { setPreparing(isPreparing); });
        const auto plan = [host = m_host, folder, drive, cancellation = m_stopMeasuring] {
            return FolderMove::plan(host, folder, drive, cancellation);
        };
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
    ++m_linkChanges;
    m_jobs.replaceAll(std::move(rows));
    m_restore = {};
    emit restoreChanged();
    forgetTimeLeft();
    reckonTimeLeft(jobsProgress(this->jobs()));
    setRunning(true);
    clearError();
    m_flows.add(JobRunner::run(std::move(jobs), drivePath, this, quitRunning));
}

void AppState::setJobStatus(std::size_t index, const JobStatus& status) {
    if (index >= jobs().size()) return;
    JobRow row = jobs()[index];
    row.job.status = status;
    row.isLinked = status.is<JobStatus::Done>();
    ++m_linkChanges;
    updateJob(index, std::move(row));
}

void AppState::setJobProgress(std::size_t index, const ByteProgress& progress) {
    if (index >= jobs().size()) return;
    JobRow row = jobs()[index];
    if (MoveRun::applyProgress(row.job, progress)) updateJob(index, std::move(row));
}

void AppState::updateJob(std::size_t index, JobRow row) {
    m_jobs.update(index, std::move(row));
    reckonTimeLeft(jobsProgress(jobs()));
    emit jobsProgressChanged();
}

void AppState::finishRun() {
    // When the user leaves in the middle of a run, the jobs behind the current one have not ended.
    const std::vector<MoveJob> ended = endedJobs();
    const MoveRun::Summary summary = MoveRun::summary(ended);
    if (summary.hasFailures) {
        setError(screenText(summary.text));
    } else if (!ended.empty()) {
        setInfo(screenText(summary.text));
    }
    forgetTimeLeft();
    setRunning(false);
    clearSelection();
    refreshAll();
    closeWhenReady();
}

std::vector<MoveJob> AppState::endedJobs() const {
    std::vector<MoveJob> ended;
    for (const JobRow& row : jobs())
        if (row.job.status.isFinal()) ended.push_back(row.job);
    return ended;
}

QString AppState::jobsSummary() const {
    const auto& rows = jobs();
    if (rows.empty()) return {};
    if (m_isRunning) {
        const auto ended =
            std::count_if(rows.begin(), rows.end(), [](const JobRow& row) { return row.job.status.isFinal(); });
        const auto count = std::ssize(rows);
        return QStringLiteral("%1 of %2").arg(std::min<qint64>(ended + 1, count)).arg(count);
    }
    const std::vector<MoveJob> ended = endedJobs();
    return ended.empty() ? QString() : screenText(MoveRun::summary(ended).text);
}

int AppState::currentJob() const {
    const auto& rows = jobs();
    const auto current = std::find_if(rows.begin(), rows.end(), [this](const JobRow& row) {
        return m_isRunning ? !row.job.status.isFinal() : row.job.status.is<JobStatus::Failed>();
    });
    return current == rows.end() ? -1 : static_cast<int>(current - rows.begin());
}

QString AppState::currentJobLabel() const {
    const int current = currentJob();
    return current < 0 ? QString() : screenText(jobs()[static_cast<std::size_t>(current)].job.label);
}

void AppState::clearRun() {
    if (m_isRunning || m_isRestoring) return;
    ++m_linkChanges;
    m_jobs.replaceAll({});
    m_restore = {};
    emit jobsProgressChanged();
    emit restoreChanged();
}

void AppState::reckonTimeLeft(const ByteProgress& progress) {
    m_timeLeftEstimate.report(progress.copied, progress.total - progress.copied, TimeLeft::Clock::now());
    const auto left = m_timeLeftEstimate.estimate();
    const QString text = left ? screenText(timeLeftText(*left)) : QString();
    if (std::exchange(m_timeLeft, text) != text) emit timeLeftChanged();
}

void AppState::forgetTimeLeft() {
    m_timeLeftEstimate = {};
    if (!std::exchange(m_timeLeft, QString()).isEmpty()) emit timeLeftChanged();
}

bool AppState::hasMoved(const FilePath& folder) const {
    return std::any_of(jobs().begin(), jobs().end(), [&](const JobRow& row) {
        return row.job.source == folder.path && row.job.status.is<JobStatus::Done>() && row.isLinked;
    });
}

void AppState::restoreSymlink(const FilePath& link) {
    m_flows.add(restoreLink(link.path));
}

QCoro::Task<> AppState::restoreLink(fs::path link) {
    refuseWhenBusy();
    FolderMove::WayBack wayBack;
    {
        const Raised preparing([this](bool isPreparing) { setPreparing(isPreparing); });
        const auto plan = [host = m_host, link] { return FolderMove::planRestore(host, link); };
        wayBack = co_await inBackground(Priority::userInitiated, plan);
        if (m_isClosing) co_return;  // Nobody would answer any more.
        const Dialog question = FolderMove::confirmRestore(wayBack);
        const int answer = co_await m_dialogs.ask(question);
        if (answer != 0 || m_isClosing) co_return;
    }
    beginRestore(RestoreRun({wayBack}));
    const auto progress = restoreProgressTaker();
    const auto restore = [host = m_host, link = wayBack.link, progress] {
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
        endRestore(screenText(FolderMove::restored(wayBack.link)), false);
    } else {
        endRestore(failure, true);
    }
}

void AppState::beginRestore(RestoreRun restore) {
    m_restore = std::move(restore);
    forgetTimeLeft();
    reckonTimeLeft(m_restore.all());
    setRestoring(true);
}

NewestValue<ByteProgress> AppState::restoreProgressTaker() {
    return NewestValue<ByteProgress>([state = QPointer(this)](const ByteProgress& newest) {
        if (!state) return;
        state->m_restore.report(newest);
        state->reckonTimeLeft(state->m_restore.all());
        emit state->restoreChanged();
    });
}

void AppState::endRestore(const QString& outcome, bool hasFailed) {
    m_restore.end(outcome, hasFailed);
    forgetTimeLeft();
    setRestoring(false);
    if (hasFailed) {
        setError(outcome);
        // It may have failed at any step: what is at the old path now is seen only there.
        if (!m_isClosing) m_flows.add(checkLinks());
    } else {
        setInfo(outcome);
        refreshAll();
    }
    closeWhenReady();
}

}  // namespace tarvik
