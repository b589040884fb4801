#pragma once

#include "Platform/Basics/Cancellation.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <string>
#include <vector>

namespace tarvik {

/// A command that installs something, as this user or as root.
struct InstallCommand {
    fs::path tool;
    std::vector<std::string> arguments;

    /// `name` is what the tool at `path` is called when it runs as root.
    static InstallCommand of(const Host& host, bool useRootferry, const fs::path& path, const std::string& name,
                             std::vector<std::string> arguments);

    /// Runs it to its end, without a time limit. A tool that is stopped is ended with all that it has started. Blocks;
    /// any thread. @throws Failure of the domain, with the tool's status and all that it has said, its complaints
    /// first; and when it was cancelled.
    void run(const std::string& domain, const Cancellation& cancellation) const;
};

}  // namespace tarvik
