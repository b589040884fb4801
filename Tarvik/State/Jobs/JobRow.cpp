#include "State/Jobs/JobRow.h"

#include "Platform/Text/Text.h"
#include "State/Lists/FilePath.h"
#include "State/Lists/ScreenText.h"

namespace tarvik {

namespace {

QString stateName(const JobStatus& status) {
    if (status.is<JobStatus::Copying>()) return QStringLiteral("copying");
    if (status.is<JobStatus::Verifying>()) return QStringLiteral("verifying");
    if (status.is<JobStatus::Linking>()) return QStringLiteral("linking");
    if (status.is<JobStatus::Done>()) return QStringLiteral("done");
    if (status.is<JobStatus::Failed>()) return QStringLiteral("failed");
    return QStringLiteral("pending");
}

QString statusText(const JobStatus& status) {
    if (const auto* failed = status.get<JobStatus::Failed>()) return screenText(failed->description);
    if (status.is<JobStatus::Copying>()) return QStringLiteral("Copying");
    if (status.is<JobStatus::Verifying>()) return QStringLiteral("Verifying");
    if (status.is<JobStatus::Linking>()) return QStringLiteral("Linking");
    if (status.is<JobStatus::Done>()) return QStringLiteral("Done");
    return QStringLiteral("Waiting");
}

/// What comes after the copy is quick beside it, so that the bar is full from there on.
double progress(const MoveJob& job) {
    if (const auto* copying = job.status.get<JobStatus::Copying>()) return copying->progress;
    if (job.status.is<JobStatus::Pending>()) return 0;
    if (job.status.is<JobStatus::Failed>()) return ByteProgress{job.bytesCopied, job.bytesTotal}.fraction();
    return 1;
}

/// How much has come of how much; of what has not begun, or is done, only how much it is.
QString bytesOf(const MoveJob& job) {
    if (job.status.is<JobStatus::Pending>() || job.status.is<JobStatus::Done>())
        return screenText(Text::byteCount(job.bytesTotal));
    return bytesText({job.bytesCopied, job.bytesTotal});
}

}  // namespace

std::vector<Role<JobRow>> JobRow::roles() {
    return {
        {"label", [](const JobRow& row) -> QVariant { return screenText(row.job.label); }},
        {"sourceText", [](const JobRow& row) -> QVariant { return screenPath(row.job.source); }},
        {"destinationText", [](const JobRow& row) -> QVariant { return screenPath(row.job.destination); }},
        {"source", [](const JobRow& row) { return QVariant::fromValue(FilePath(row.job.source)); }},
        {"state", [](const JobRow& row) -> QVariant { return stateName(row.job.status); }},
        {"statusText", [](const JobRow& row) -> QVariant { return statusText(row.job.status); }},
        {"progress", [](const JobRow& row) -> QVariant { return progress(row.job); }},
        {"bytesText", [](const JobRow& row) -> QVariant { return bytesOf(row.job); }},
        {"canMoveBack",
         [](const JobRow& row) -> QVariant { return row.job.status.is<JobStatus::Done>() && row.isLinked; }},
    };
}

double overallProgress(const std::vector<JobRow>& rows) {
    if (rows.empty()) return 0;
    double done = 0;
    double all = 0;
    for (const auto& [job, isLinked] : rows) {
        // A job of unknown size weighs as much as a single byte: it still counts when no size is known at all.
        const double weight = static_cast<double>(std::max<std::int64_t>(job.bytesTotal, 1));
        all += weight;
        done += weight * (job.status.isFinal() ? 1 : progress(job));
    }
    return done / all;
}

ByteProgress jobsProgress(const std::vector<JobRow>& rows) {
    ByteProgress all;
    for (const auto& [job, isLinked] : rows) {
        const std::int64_t copied = job.status.is<JobStatus::Done>() ? job.bytesTotal : job.bytesCopied;
        all.copied += copied;
        all.total += job.status.isFinal() ? copied : std::max(job.bytesTotal, copied);
    }
    return all;
}

QString bytesText(const ByteProgress& progress) {
    return screenText(Text::byteCount(progress.copied) + " of " + Text::byteCount(progress.total));
}

}  // namespace tarvik
