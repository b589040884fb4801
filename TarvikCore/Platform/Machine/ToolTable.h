#pragma once

#include "Platform/Basics/Path.h"

namespace tarvik {

/// The external tools, each by its absolute path. They are called with the same arguments on every system: where the
/// system lacks one, a stand-in of the same name answers. A tool that is not there gives status 127 when it is run.
/// What each of them is on a machine in a folder is decided in `ToolRules`, without which no tool can be added here.
struct ToolTable {
    fs::path ditto;
    fs::path find;
    fs::path codesign;
    fs::path xcrun;
    fs::path spctl;
    fs::path lsregister;
    fs::path tmutil;
    fs::path mdutil;
    fs::path ps;
    fs::path pkgutil;
    fs::path hdiutil;
    fs::path xar;
    fs::path installer;
    fs::path bash;
    fs::path xattr;
    /// Runs a command as root. A user may keep it in the home folder instead: whoever runs it looks there too.
    fs::path rootferry;
    /// The one that is not run: the program that is copied into every launcher.
    fs::path externalAppLauncher;

    bool operator==(const ToolTable&) const = default;
};

/// The tools of this system.
ToolTable systemTools();

}  // namespace tarvik
