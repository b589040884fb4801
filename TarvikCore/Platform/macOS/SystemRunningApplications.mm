#include "Platform/Files/Files.h"
#include "Platform/Machine/RunningApplications.h"

#import <AppKit/AppKit.h>
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
class MacRunningApplications final : public RunningApplications {
public:
    std::vector<RunningApplication> running() const override {
        std::vector<RunningApplication> applications;
        @autoreleasepool {
            for (NSRunningApplication* application in NSWorkspace.sharedWorkspace.runningApplications) {
                const char* path = application.bundleURL.fileSystemRepresentation;
                if (!path || hasEnded(application) || application.processIdentifier == ::getpid()) continue;
                applications.push_back(
                    {application.processIdentifier, startTimeOf(application), Files::standardized(path)});
            }
        }
        return applications;
    }

    void terminate(const RunningApplication& application) const override {
        with(application, [](NSRunningApplication* found) { [found terminate]; });
    }

    void forceTerminate(const RunningApplication& application) const override {
        with(application, [](NSRunningApplication* found) { [found forceTerminate]; });
    }

private:
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
};

}  // namespace

std::shared_ptr<const RunningApplications> makeSystemRunningApplications() {
    return std::make_shared<MacRunningApplications>();
}

}  // namespace tarvik
