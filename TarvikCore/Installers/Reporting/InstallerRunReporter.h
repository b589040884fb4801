#pragma once

#include <functional>
#include <string>

namespace tarvik {

/// Where a long act writes what it does: one line for each step, a tag first, then fields with tabs between them.
struct InstallerRunReporter {
    /// Takes one line. May be called from any thread.
    using Sink = std::function<void(const std::string& line)>;

    /// Empty: the lines go nowhere.
    Sink sink;

    void log(const std::string& line) const {
        if (sink) sink(line);
    }

    static const InstallerRunReporter silent;
};

inline const InstallerRunReporter InstallerRunReporter::silent{};

}  // namespace tarvik
