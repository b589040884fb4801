#pragma once

#include "Platform/Path.h"

namespace tarvik {

/// The external tools, each by its absolute path. They are called with the same arguments on every system: where the
/// system lacks one, a stand-in of the same name answers. A tool that is not there gives status 127 when it is run.
struct ToolTable {
    fs::path ditto;
    fs::path find;
    fs::path codesign;
    fs::path xcrun;
    fs::path spctl;
    fs::path ps;
    fs::path tmutil;
    fs::path lsregister;
    /// The one that is not run: the program that is copied into every launcher.
    fs::path externalAppLauncher;

    bool operator==(const ToolTable&) const = default;
};

/// The tools of this system.
ToolTable systemTools();

}  // namespace tarvik
