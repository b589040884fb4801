#pragma once

#include "Platform/Machine/Host.h"

namespace tarvik::test {

/// A host that is no more than its two folders, for rules that look at nothing else.
inline Host hostOf(const fs::path& root, const fs::path& home) {
    Host host;
    host.root = root;
    host.home = home;
    return host;
}

}  // namespace tarvik::test
