#include "State/JobRunner.h"

#include "Move/MoveRun.h"
#include "State/AppState.h"
#include "State/Background.h"
#include "State/NewestValue.h"
#include "State/UiThread.h"

namespace tarvik::JobRunner {

namespace {

struct Progress {
    std::int64_t copied = 0;
    std::int64_t total = 0;
};

/// Runs one job of the list. Blocks; background thread.
void runOne(const Host& host, const std::vector<MoveJob>& jobs, std::size_t index, const fs::path& drivePath,
            const QPointer<AppState>& state, bool quitRunning) {
    const NewestValue<Progress> progress([state, index](const Progress& newest) {
        if (state) state->setJobProgress(index, newest.copied, newest.total);
    });
    MoveRun::run(
        host, {jobs[index]}, drivePath, quitRunning,
        [&](std::size_t, const JobStatus& status) {
            UiThread::post([state, index, status] {
                if (state) state->setJobStatus(index, status);
            });
        },
        [progress](std::size_t, std::int64_t copied, std::int64_t total) {
            progress.send({copied, total});
        });
}

}  // namespace

QCoro::Task<> run(std::vector<MoveJob> jobs, fs::path drivePath, QPointer<AppState> state, bool quitRunning) {
    if (!state) co_return;
    // One job at a time is handed to the core, so that the user can leave between two of them.
    const auto work = [host = state->host(), stop = state->stopAfterItem(), jobs, drivePath, state, quitRunning] {
        for (std::size_t index = 0; index < jobs.size() && !stop.isCancelled(); ++index)
            runOne(host, jobs, index, drivePath, state, quitRunning);
    };
    co_await inBackground(Priority::userInitiated, work);
    // Whatever the callbacks have posted came before this, so that every status is final here.
    if (state) state->finishRun();
}

}  // namespace tarvik::JobRunner
