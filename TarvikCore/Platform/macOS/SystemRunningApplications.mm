#include "Platform/Files/Files.h"
#include "Platform/Machine/EnclosingBundles.h"
#include "Platform/Machine/RunningApplications.h"
#include "Platform/Processes/ProcessTable.h"

#import <AppKit/AppKit.h>
#include <algorithm>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <functional>
#include <memory>
#include <unistd.h>
#include <vector>

namespace tarvik {

namespace {

/// In microseconds since 1970; 0 for an application that was not started through Launch Services.
std::uint64_t startTimeOf(NSRunningApplication* application) {
    const double seconds = application.launchDate ? application.launchDate.timeIntervalSince1970 : 0;
    return static_cast<std::uint64_t>(std::llround(seconds * 1e6));
}

/// The system brings its list up to date on the main thread, when that has a run loop; a command has none. So whether a
/// process is still there is asked of the system itself.
bool hasEnded(NSRunningApplication* application) {
    return application.terminated || (::kill(application.processIdentifier, 0) != 0 && errno == ESRCH);
}

/// The applications as Launch Services knows them: those of the user, agents included, but no helpers and daemons.
///
/// The workspace's list is brought up to date by the main thread's run loop alone (NSWorkspace, runningApplications),
/// and a command has none: what was started since it began is missing there. So each process that runs from a bundle is
/// looked up by itself, too.
class MacRunningApplications final : public RunningApplications {
public:
    std::vector<RunningApplication> running() const override {
        std::vector<RunningApplication> applications;
        @autoreleasepool {
            for (NSRunningApplication* application in NSWorkspace.sharedWorkspace.runningApplications)
                add(application, applications);
            for (const auto& process : ProcessTable::processes())
                if (!EnclosingBundles::of(process.executable).empty())
                    add([NSRunningApplication runningApplicationWithProcessIdentifier:process.identifier],
                        applications);
        }
        return applications;
    }

    std::vector<fs::path> bundlesInUse() const override { return m_table->bundlesInUse(); }

    void terminate(const RunningApplication& application) const override {
        with(application, [](NSRunningApplication* found) { [found terminate]; });
    }

    void forceTerminate(const RunningApplication& application) const override {
        with(application, [](NSRunningApplication* found) { [found forceTerminate]; });
    }

private:
    /// Once each.
    static void add(NSRunningApplication* application, std::vector<RunningApplication>& applications) {
        const char* path = application.bundleURL.fileSystemRepresentation;
        if (!path || hasEnded(application) || application.processIdentifier == ::getpid()) return;
        const pid_t process = application.processIdentifier;
        const bool isThere = std::any_of(applications.begin(), applications.end(),
                                         [&](const RunningApplication& other) { return other.process == process; });
        if (!isThere) applications.push_back({process, startTimeOf(application), Files::standardized(path)});
    }

    /// Looks an application up by its process and makes sure that it is the same one. The object stands for one run of
    /// an application: a later process of the same number is another one's.
    static void with(const RunningApplication& application, const std::function<void(NSRunningApplication*)>& act) {
        if (application.process == ::getpid()) return;
        @autoreleasepool {
            NSRunningApplication* found =
                [NSRunningApplication runningApplicationWithProcessIdentifier:application.process];
            if (found && startTimeOf(found) == application.startTime) act(found);
        }
    }

    const std::shared_ptr<const RunningApplications> m_table = makeProcessTableApplications({});
};

}  // namespace

std::shared_ptr<const RunningApplications> makeSystemRunningApplications() {
    return std::make_shared<MacRunningApplications>();
}

}  // namespace tarvik
