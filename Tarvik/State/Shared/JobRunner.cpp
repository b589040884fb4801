#include "State/Shared/JobRunner.h"

#include "MovePlan/MoveRun.h"
#include "State/Shared/AppState.h"
#include "State/Threads/Background.h"
#include "State/Threads/NewestValue.h"
#include "State/Threads/UiThread.h"

#include <QScopeGuard>

#include <cstddef>

namespace tarvik::JobRunner {

namespace {

using Progress = NewestValue<ByteProgress>;

/// One for each job: the newest report of one must not take the place of another's last.
std::vector<Progress> progressOf(std::size_t count, const QPointer<AppState>& state) {
    std::vector<Progress> progress;
    for (std::size_t index = 0; index < count; ++index)
        progress.emplace_back([state, index](const ByteProgress& newest) {
            if (state) state->setJobProgress(index, newest);
        });
    return progress;
}

}  // namespace

QCoro::Task<> run(std::vector<MoveJob> jobs, fs::path drivePath, QPointer<AppState> state, bool quitRunning) {
    if (!state) co_return;
    // However the run ends, it ends: a state that took it for running for ever would refuse everything else.
    const auto finish = qScopeGuard([state] {
        if (state) state->finishRun();
    });
    const auto work = [host = state->host(), stop = state->stopAfterItem(), progress = progressOf(jobs.size(), state),
                       jobs, drivePath, state, quitRunning] {
        MoveRun::run(
            host, jobs, drivePath, quitRunning,
            [&](std::size_t index, const JobStatus& status) {
                UiThread::post([state, index, status] {
                    if (state) state->setJobStatus(index, status);
                });
            },
            [&](std::size_t index, const ByteProgress& report) { progress[index].send(report); }, stop);
    };
    // Whatever the callbacks have posted comes before its end, so that every status is final then.
    co_await inBackground(Priority::userInitiated, work);
}

}  // namespace tarvik::JobRunner
