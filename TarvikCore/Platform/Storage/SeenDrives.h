#pragma once

#include "Platform/Machine/Host.h"
#include "Platform/Storage/SeenDrive.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tarvik {

/// The volumes of a machine as they are at one moment, but for those that are noted to be silent. Any thread.
class SeenDrives {
public:
    /// Asks each volume what it is; blocks while they answer, and never fails.
    explicit SeenDrives(const Host& host);

    /// The volume of that moment which holds `place`, an absolute path that need not be there; of a link, the one that
    /// the link itself is on; of what is on a silent volume, none. A few status calls; never fails.
    SeenDrive of(const fs::path& place) const;

private:
    struct Mounted {
        SeenDrive drive;
        /// The mount path without links.
        fs::path top;
        std::uint64_t device;
    };

    Host m_host;
    /// The deepest first.
    std::vector<Mounted> m_volumes;
};

}  // namespace tarvik
