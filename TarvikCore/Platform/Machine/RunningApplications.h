#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/RunningApplication.h"

#include <memory>
#include <vector>

namespace tarvik {

/// The applications that run on a machine, and the two ways to ask them to end. Safe to call from any thread; never
/// throws. This program itself is never among them.
class RunningApplications {
public:
    virtual ~RunningApplications() = default;

    /// The running applications that have a bundle, in no promised order.
    virtual std::vector<RunningApplication> running() const = 0;
    /// The bundles that any process runs from inside of, whosever it is: helpers and daemons too, which are no
    /// applications. A bundle may be among them more than once.
    virtual std::vector<fs::path> bundlesInUse() const = 0;
    /// Asks one to end, as its user would. It may take its time, or refuse; nothing happens when it has gone already.
    virtual void terminate(const RunningApplication& application) const = 0;
    /// Ends one, whatever it is doing.
    virtual void forceTerminate(const RunningApplication& application) const = 0;
};

/// What this system counts as its user's applications. A system without such a list gives its process table.
std::shared_ptr<const RunningApplications> makeSystemRunningApplications();

/// The processes that run from inside a bundle, as the process table shows them; the two requests are SIGTERM and
/// SIGKILL. A process within nested bundles is an application of each. A script that is its bundle's program belongs to
/// the bundle, although the interpreter that runs it does not.
/// Only bundles at or below `folders` count; without any, all do.
std::shared_ptr<const RunningApplications> makeProcessTableApplications(std::vector<fs::path> folders);

}  // namespace tarvik
