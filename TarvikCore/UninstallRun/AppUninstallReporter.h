#pragma once

#include <functional>
#include <string>

namespace tarvik {

/// Where an uninstall writes what it does: one line for each step, a tag first, then fields with tabs between them.
struct AppUninstallReporter {
    /// Takes one line, on the thread that runs the uninstall.
    std::function<void(const std::string& line)> log;

    /// The lines go nowhere.
    static const AppUninstallReporter silent;
};

inline const AppUninstallReporter AppUninstallReporter::silent{[](const std::string&) {}};

}  // namespace tarvik
