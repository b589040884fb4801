#include "CommandLine/WatchedRun.h"

#include "CommandLine/Outcome.h"
#include "CommandLine/Output/ProgressDisplay.h"
#include "CommandLine/Signals.h"
#include "MovePlan/MoveRun.h"

#include <fmt/format.h>

#include <cstddef>
#include <mutex>
#include <optional>
#include <utility>

namespace tarvik::CommandLine {

namespace {

/// Takes the reports of every thread in, and shows those of the job that is under way.
class Watch {
public:
    Watch(std::vector<MoveJob> jobs, Format format) : m_jobs(std::move(jobs)), m_format(format) {}

    void take(std::size_t index, const JobStatus& status) {
        const std::lock_guard lock(m_mutex);
        m_jobs[index].status = status;
        if (status.isFinal()) return m_display.reset();
        if (!m_display) m_display.emplace(ProgressDisplay::outputFor(m_format), labelOf(index));
        if (status.is<JobStatus::Copying>()) m_display->step("copying");
        if (status.is<JobStatus::Verifying>()) m_display->step("verifying");
        if (status.is<JobStatus::Linking>()) m_display->step("linking");
    }

    void take(std::size_t index, const ByteProgress& progress) {
        const std::lock_guard lock(m_mutex);
        if (MoveRun::applyProgress(m_jobs[index], progress) && m_display) m_display->progress(progress);
    }

    /// A job that was not begun has failed.
    std::vector<MoveJob> ended() && {
        for (MoveJob& job : m_jobs)
            if (!job.status.isFinal()) job.status = JobStatus::failed(notStarted);
        return std::move(m_jobs);
    }

private:
    std::string labelOf(std::size_t index) const {
        if (m_jobs.size() == 1) return m_jobs.front().label;
        return fmt::format("{} ({} of {})", m_jobs[index].label, index + 1, m_jobs.size());
    }

    std::mutex m_mutex;
    std::vector<MoveJob> m_jobs;
    const Format m_format;
    /// Of the job that is under way.
    std::optional<ProgressDisplay> m_display;
};

}  // namespace

std::vector<MoveJob> runWatched(const Host& host, const std::vector<MoveJob>& jobs, const fs::path& drivePath,
                                bool quitRunning, Format format) {
    Watch watch(jobs, format);
    const SignalGuard guard;
    MoveRun::run(
        host, jobs, drivePath, quitRunning,
        [&](std::size_t index, const JobStatus& status) { watch.take(index, status); },
        [&](std::size_t index, const ByteProgress& progress) { watch.take(index, progress); }, SignalGuard::request());
    return std::move(watch).ended();
}

}  // namespace tarvik::CommandLine
