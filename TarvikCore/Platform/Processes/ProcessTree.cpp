#include "Platform/Processes/ProcessTree.h"

#include <algorithm>
#include <set>

namespace tarvik {

namespace {

using Processes = std::vector<ProcessTable::Process>;

bool isAmong(const Processes& processes, const ProcessTable::Process& wanted) {
    return std::any_of(processes.begin(), processes.end(), [&](const ProcessTable::Process& process) {
        return process.identifier == wanted.identifier && process.startTime == wanted.startTime;
    });
}

}  // namespace

ProcessTree::ProcessTree(pid_t root) {
    for (const auto& process : ProcessTable::processes())
        if (process.identifier == root) m_members.push_back(process);
    addNew();
}

void ProcessTree::send(int signal) {
    addNew();
    for (const auto& process : m_members) ProcessTable::send(signal, process.identifier, process.startTime);
}

bool ProcessTree::isRunning() const {
    const auto running = ProcessTable::processes();
    return std::any_of(m_members.begin(), m_members.end(),
                       [&](const ProcessTable::Process& process) { return isAmong(running, process); });
}

void ProcessTree::addNew() {
    const auto running = ProcessTable::processes();
    // The number of one that has ended may be another process's by now.
    std::set<pid_t> members;
    for (const auto& process : running)
        if (isAmong(m_members, process)) members.insert(process.identifier);
    // Each round finds the children of those that the last one has found.
    for (bool hasGrown = true; hasGrown;) {
        hasGrown = false;
        for (const auto& process : running) {
            if (members.contains(process.identifier)) continue;
            if (!members.contains(ProcessTable::parentOf(process.identifier))) continue;
            members.insert(process.identifier);
            m_members.push_back(process);
            hasGrown = true;
        }
    }
}

}  // namespace tarvik
