// What `AppState` moves: a run of jobs to a drive, and ways back.

#include "MovePlan/AppRestore.h"
#include "MovePlan/MoveRun.h"
#include "MovePlan/WayBack.h"
#include "State/Lists/ScreenText.h"
#include "State/Shared/AppState.h"
#include "State/Shared/Dialogs.h"
#include "State/Shared/JobRunner.h"
#include "State/Threads/Background.h"
#include "State/Threads/NewestValue.h"
#include "State/Threads/UiThread.h"

#include <QPointer>

#include <algorithm>
#include <iterator>
#include <utility>

namespace tarvik {

namespace {

/// What is asked of the user who closes the window in the middle.
Dialog quitWhileMoving() {
    return {"Quit while an item is being moved?",
            "Tarvik quits as soon as this item is safely done. Items that have not been started stay where they "
            "are.",
            {"Finish Item and Quit", "Cancel"}};
}

}  // namespace

void AppState::runJobs(std::vector<MoveJob> jobs, const std::string&, const fs::path& drivePath, bool quitRunning) {
    m_act = act(quitWhileMoving());
    std::vector<JobRow> rows;
    rows.reserve(jobs.size());
    for (const MoveJob& job : jobs) rows.push_back({job, false});
    ++m_linkChanges;
    m_jobs.replaceAll(std::move(rows));
    m_restore = {};
    emit restoreChanged();
    forgetTimeLeft();
    reckonTimeLeft(jobsProgress(this->jobs()));
    setRunning(true);
    clearError();
    follow(JobRunner::run(std::move(jobs), drivePath, this, quitRunning));
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
    for (const auto& each : m_tabs) each->runEnded();
    m_keptApplications.add(failedJobs());
    lookAgain();
}

void AppState::setRunning(bool isRunning) {
    m_isRunning = isRunning;
    if (!isRunning) m_act.reset();
    emit isRunningChanged();
    emit jobsProgressChanged();
}

std::vector<MoveJob> AppState::endedJobs() const {
    std::vector<MoveJob> ended;
    for (const JobRow& row : jobs())
        if (row.job.status.isFinal()) ended.push_back(row.job);
    return ended;
}

std::vector<KeptApplications::Failed> AppState::failedJobs() const {
    std::vector<KeptApplications::Failed> found;
    for (const JobRow& row : jobs())
        if (const auto* failed = row.job.status.get<JobStatus::Failed>())
            found.push_back({row.job.source, failed->description});
    return found;
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
    follow(restoreLink(link.path));
}

QCoro::Task<> AppState::restoreLink(fs::path link) {
    WayBack::Plan wayBack;
    {
        const auto preparing = prepare();
        const auto plan = [host = m_host, link] { return WayBack::plan(host, link); };
        wayBack = co_await inBackground(Priority::userInitiated, plan);
        if (m_isClosing) co_return;  // Nobody would answer any more.
        const Dialog question = WayBack::confirm(wayBack);
        const int answer = co_await m_dialogs.ask(question);
        if (answer != 0 || m_isClosing) co_return;
    }
    beginRestore(RestoreRun({wayBack}));
    const auto progress = restoreProgressTaker();
    const auto restore = [host = m_host, wayBack, progress] {
        WayBack::run(host, wayBack, [&](std::int64_t copied, std::int64_t total) { progress.send({copied, total}); });
    };
    std::string failure;
    try {
        co_await inBackground(Priority::userInitiated, restore);
    } catch (const std::exception& thrown) {
        failure = thrown.what();
    }
    if (failure.empty()) {
        endRestore(screenText(WayBack::restored(wayBack.link)), false);
        lookAgain();
    } else {
        endRestore(screenText(failure), true);
        m_keptApplications.add({{wayBack.target, failure}});
        // It may have failed at any step: what is at the old path now is seen only there.
        if (!m_isClosing) follow(checkLinks());
    }
}

QCoro::Task<> AppState::restoreAll(AppRestore::Plan plan) {
    std::vector<std::int64_t> sizes;
    for (const WayBack::Plan& wayBack : plan.waysBack) sizes.push_back(wayBack.bytes);
    beginRestore(RestoreRun(plan.waysBack, std::move(sizes)));
    // One for each: the newest report of one must not take the place of another's last.
    std::vector<NewestValue<ByteProgress>> progress;
    for (std::size_t index = 0; index < plan.waysBack.size(); ++index) progress.push_back(restoreProgressTaker());
    const auto restore = [host = m_host, waysBack = plan.waysBack, progress, state = QPointer(this),
                          stop = m_stopAfterItem] {
        const auto begins = [&](std::size_t index) {
            UiThread::post([state, index] {
                if (state) state->beginRestoreOf(index);
            });
        };
        return AppRestore::restoreAll(
            host, waysBack, begins,
            [&](std::size_t index, const ByteProgress& newest) { progress[index].send(newest); }, stop);
    };
    MoveRun::Summary summary;
    std::vector<KeptApplications::Failed> failed;
    try {
        const std::vector<AppRestore::Result> results = co_await inBackground(Priority::userInitiated, restore);
        summary = AppRestore::summary(plan, results);
        for (std::size_t index = 0; index < results.size(); ++index)
            if (results[index]) failed.push_back({plan.waysBack[index].target, *results[index]});
    } catch (const std::exception& thrown) {
        summary = {true, thrown.what()};
    }
    endRestore(screenText(summary.text), summary.hasFailures);
    m_keptApplications.add(std::move(failed));
    lookAgain();
}

void AppState::beginRestore(RestoreRun restore) {
    m_act = act(quitWhileMoving());
    m_restore = std::move(restore);
    forgetTimeLeft();
    reckonTimeLeft(m_restore.all());
    setRestoring(true);
}

void AppState::beginRestoreOf(std::size_t item) {
    m_restore.begin(item);
    emit restoreChanged();
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
    if (hasFailed) {
        setError(outcome);
    } else {
        setInfo(outcome);
    }
    setRestoring(false);
}

void AppState::setRestoring(bool isRestoring) {
    m_isRestoring = isRestoring;
    if (!isRestoring) m_act.reset();
    emit isRestoringChanged();
    emit restoreChanged();
}

}  // namespace tarvik
