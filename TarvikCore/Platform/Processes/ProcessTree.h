#pragma once

#include "Platform/Processes/ProcessTable.h"

#include <sys/types.h>
#include <vector>

namespace tarvik {

/// A process and all that it has started, to be told to end together: a shell that is killed leaves its commands
/// running.
///
/// What has been left behind by its parent before the object was made does not belong to it. One thread.
class ProcessTree {
public:
    /// The process must be a child of this one that has not been waited for.
    explicit ProcessTree(pid_t root);

    /// Looks for what has been started since, and sends a signal to all. What belongs to another user gets none.
    void send(int signal);
    bool isRunning() const;

private:
    void addNew();

    std::vector<ProcessTable::Process> m_members;
};

}  // namespace tarvik
