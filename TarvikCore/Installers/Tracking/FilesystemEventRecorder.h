#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/FileEvents.h"
#include "Platform/Machine/Host.h"

#include <memory>
#include <mutex>
#include <string>
#include <unordered_set>
#include <vector>

namespace tarvik {

/// Notes all paths at which something happens while an installer runs: also what is hidden, and what comes and goes
/// before anybody lists it. One serves one run. `start` and `stop` are called from one thread.
class FilesystemEventRecorder {
public:
    /// Nothing is watched yet. The roots are standardized.
    FilesystemEventRecorder(const Host& host, const std::vector<fs::path>& roots);
    /// Stops.
    ~FilesystemEventRecorder();
    FilesystemEventRecorder(const FilesystemEventRecorder&) = delete;
    FilesystemEventRecorder& operator=(const FilesystemEventRecorder&) = delete;

    /// Begins to watch the roots, which may take as long as it takes to list their folders. Does nothing when it
    /// watches already, or without roots. Where the system gives no events, the run goes on without them, and
    /// `warnings` tells.
    void start();
    /// Ends it. @returns the paths noted since the object was made, standardized and sorted as plain bytes. Events that
    /// the system has not told of by now are not waited for.
    std::vector<std::string> stop();

    /// What may be missing among the paths, a sentence each; empty when nothing was missed. Any thread.
    std::vector<std::string> warnings() const;

private:
    void record(const std::vector<std::string>& paths);
    void warn(const std::string& sentence);

    const std::shared_ptr<const FileEvents> m_source;
    std::vector<fs::path> m_roots;
    mutable std::mutex m_lock;  // Guards what follows the stream: it tells from a thread of its own.
    std::unique_ptr<FileEvents::Stream> m_stream;
    std::unordered_set<std::string> m_paths;
    std::vector<std::string> m_warnings;
};

}  // namespace tarvik
