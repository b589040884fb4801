#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Files/FileDescriptor.h"

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

namespace tarvik::test {

/// Holds up whoever opens one of some folders, for the first time each, until a function has run: a test can act at a
/// known moment of a walk through a tree.
class FolderGate {
public:
    /// Gets how many folders have been opened, from 1 on. Runs on a thread of its own and must not open one itself.
    using Act = std::function<void(std::size_t opened)>;

    FolderGate(std::vector<fs::path> folders, Act act);
    ~FolderGate();
    FolderGate(const FolderGate&) = delete;
    FolderGate& operator=(const FolderGate&) = delete;

    /// Whether the system lets this user hold others up.
    static bool isPossible();

private:
    void guard();

    std::vector<fs::path> m_folders;
    Act m_act;
    FileDescriptor m_events;
    std::atomic<bool> m_isOver = false;
    std::thread m_thread;
};

}  // namespace tarvik::test
