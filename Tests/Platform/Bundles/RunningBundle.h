#pragma once

#include "Platform/Processes/ChildProcess.h"
#include "Platform/Processes/ProcessTable.h"
#include "Support/Tree.h"

#include <algorithm>
#include <csignal>
#include <string>
#include <unistd.h>
#include <vector>

/// Small programs that run from inside bundles. Each is killed at the end of its object's life.
namespace tarvik::test {

/// A copy of a program that sleeps, at `path`.
inline void makeSleeper(const fs::path& path) {
    makeFolder(path.parent_path());
    fs::copy_file("/bin/sleep", path);
}

/// A script at `path` that runs until it is asked to end, with the line that names its interpreter.
inline void makeScript(const fs::path& path, const std::string& interpreter) {
    makeFile(path, "#!" + interpreter + "\nwhile :; do sleep 0.05; done\n");
    fs::permissions(path, fs::perms::owner_all);
}

/// Waits until the process table tells the arguments of a program that is the only one of its path: they come a moment
/// after the program has taken its place.
inline void waitUntilTold(const fs::path& program) {
    const auto isTold = [&](const ProcessTable::Process& process) {
        return process.executable == program && !process.arguments.empty();
    };
    for (int looks = 0; looks < 1000; ++looks) {
        const auto processes = ProcessTable::processes();
        if (std::any_of(processes.begin(), processes.end(), isTold)) return;
        ::usleep(10'000);
    }
}

/// Runs such a program and waits for that.
inline ChildProcess runTold(const fs::path& program, const std::vector<std::string>& arguments) {
    ChildProcess child = ChildProcess::start(program, arguments);
    waitUntilTold(program);
    return child;
}

/// Runs a sleeper from inside the bundle.
inline ChildProcess runSleeperIn(const fs::path& bundle) {
    const fs::path program = bundle / "Contents/MacOS/sleeper";
    makeSleeper(program);
    return runTold(program, {"100"});
}

/// Runs one that ignores the request to end.
inline ChildProcess runStubbornSleeperIn(const fs::path& bundle) {
    const auto before = std::signal(SIGTERM, SIG_IGN);  // The program inherits that.
    ChildProcess program = runSleeperIn(bundle);
    std::signal(SIGTERM, before);
    return program;
}

}  // namespace tarvik::test
