#pragma once

#include "MovePlan/MoveJob.h"
#include "Platform/Basics/Path.h"

#include <QCoroTask>
#include <QPointer>

#include <vector>

namespace tarvik {

class AppState;

/// Carries a list of jobs off the UI thread into the core, and what happens to them back into the state object.
namespace JobRunner {

/// Runs the jobs, which are those of `state`, one after the other. `drivePath` is where the drive is mounted. Does
/// nothing when `state` is gone. Called on the UI thread and goes on there; the work itself is one piece in the
/// background. Between two jobs it ends early when `state` shall close; no job is ever cut short.
QCoro::Task<> run(std::vector<MoveJob> jobs, fs::path drivePath, QPointer<AppState> state, bool quitRunning);

}  // namespace JobRunner

}  // namespace tarvik
