#include "State/JobRunner.h"

#include "Move/MoveRun.h"
#include "State/AppState.h"
#include "State/Background.h"
#include "State/NewestValue.h"
#include "State/UiThread.h"

#include <QScopeGuard>

namespace tarvik::JobRunner {

namespace {

/// Runs one job of the list. Blocks; background thread.
void runOne(const Host& host, const std::vector<MoveJob>& jobs, std::size_t index, const fs::path& drivePath,
            const QPointer<AppState>& state, bool quitRunning) {
    const NewestValue<ByteProgress> progress([state, index](const ByteProgress& newest) {
        if (state) state->setJobProgress(index, newest);
    });
    MoveRun::run(
        host, {jobs[index]}, drivePath, quitRunning,
        [&](std::size_t, const JobStatus& status) {
            UiThread::post([state, index, status] {
                if (state) state->setJobStatus(index, status);
            });
        },
        [progress](std::size_t, const ByteProgress& report) { progress.send(report); });
}

}  // namespace

QCoro::Task<> run(std::vector<MoveJob> jobs, fs::path drivePath, QPointer<AppState> state, bool quitRunning) {
    if (!state) co_return;
    // One job at a time is handed to the core, so that the user can leave between two of them.
    const auto work = [host = state->host(), stop = state->stopAfterItem(), jobs, drivePath, state, quitRunning] {
        for (std::size_t index = 0; index < jobs.size() && !stop.isCancelled(); ++index)
            runOne(host, jobs, index, drivePath, state, quitRunning);
    };
    // However the run ends, it ends: a state that took it for running for ever would refuse everything else.
    const auto finish = qScopeGuard([state] {
        if (state) state->finishRun();
    });
    // Whatever the callbacks have posted comes before its end, so that every status is final then.
    co_await inBackground(Priority::userInitiated, work);
}

}  // namespace tarvik::JobRunner
