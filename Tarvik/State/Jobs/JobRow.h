#pragma once

#include "Copying/ByteProgress.h"
#include "MovePlan/MoveJob.h"
#include "State/Lists/RecordListModel.h"

#include <vector>

namespace tarvik {

/// A job of the current or last run as the window lists it.
struct JobRow {
    MoveJob job;
    /// Whether the link that the job has made still stands, so that the item can come back.
    bool isLinked = false;

    static std::vector<Role<JobRow>> roles();
    static std::string key(const JobRow& row) { return row.job.id; }
};

/// How far a run is as a whole, 0 to 1, by bytes; by jobs when no size is known.
double overallProgress(const std::vector<JobRow>& rows);
/// The same in bytes: what of a failed job has not come will not come.
ByteProgress jobsProgress(const std::vector<JobRow>& rows);

/// "1.2 MB of 3 MB".
QString bytesText(const ByteProgress& progress);

}  // namespace tarvik
