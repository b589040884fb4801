#pragma once

#include "Platform/Basics/Path.h"

namespace tarvik {

/// A launcher that stands among the applications, or should.
struct LauncherEntry {
    enum class Condition {
        ok,
        missing,     ///< an application behind a link has none
        outdated,    ///< it opens something else than the application behind a link that it stands for
        relocated,   ///< its application has moved to the place where this version looks for it
        incomplete,  ///< it has no program
        needless,    ///< its application has come back with the folder that it stands in
        broken,      ///< its application is gone
    };

    fs::path launcher;
    /// What it opens, or will open once it is repaired.
    fs::path target;
    Condition condition = Condition::ok;

    /// Whether it can be made good: by a new launcher, or by taking a needless one away.
    bool isRepairable() const { return condition != Condition::ok && condition != Condition::broken; }

    bool operator==(const LauncherEntry&) const = default;
};

}  // namespace tarvik
