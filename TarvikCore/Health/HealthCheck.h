#pragma once

#include "Health/HealthReport.h"
#include "Health/HealthSizes.h"
#include "Platform/Basics/Cancellation.h"
#include "Platform/Machine/Host.h"

#include <vector>

/// Looks at everything that was moved, and at the links and launchers that stand for it.
namespace tarvik::HealthCheck {

struct Options {
    /// Folders of applications beside those on mounted drives.
    std::vector<fs::path> extraDriveRoots;
    HealthSizes::Wish sizes = HealthSizes::Wish::measured;
    /// A cancelled check ends soon and gives what it has found so far.
    Cancellation cancellation;
};

/// The application folders that are checked: /Applications.
std::vector<fs::path> applicationRoots(const Host& host);

/// Blocks for long: it reads folders, measures bundles and runs the signature tools for each, over all processors; the
/// findings come in one order all the same. Any thread but the window's; never fails: what cannot be read gives fewer
/// findings. What is on a volume that does not answer counts as away, also when it falls silent meanwhile: the check
/// then begins anew without it, and leaves behind the thread that is stuck there until the volume answers or goes. No
/// system ends a thread in such a call: the report comes, but a program that ends meanwhile is there as long, to
/// whoever waits for its end. A check in a process of its own could be left behind instead, but that would have to be
/// another program: in a copy of this one a Mac's libraries must not be used (fork(2)).
HealthReport run(const Host& host, const std::vector<fs::path>& applicationRoots, const Options& options = {});

}  // namespace tarvik::HealthCheck
