#pragma once

#include "Platform/Basics/Path.h"

#include <cstdint>

namespace tarvik {

/// What an archive would do to a disk, found out before anything is unpacked.
struct ZipCheck {
    /// Whether a tool that believes all that it reads could write elsewhere than into the folder that it is given: by
    /// an entry that is absolute or climbs, through a link that the archive makes itself, by a device or a hard link. A
    /// link that only leads elsewhere is no such thing. An archive whose headers overlap so much that it would take for
    /// ever to read them counts as such.
    bool isUnsafe = false;
    /// What the files take when they are unpacked, in bytes, as the directory claims it; 0 where it cannot be read.
    std::int64_t unpackedSize = 0;

    bool operator==(const ZipCheck&) const = default;

    /// Reads the archive. A tool may go by the directory at its end, or from one header to the next, and the two may be
    /// made to differ: whatever some tool could take for an entry counts. Where the directory cannot be read,
    /// everything that looks like a header counts. What cannot be opened at all is safe: the tool will say why. Blocks
    /// for as long as it takes to read the directory, and the data of those entries whose length does not stand before
    /// them.
    static ZipCheck of(const fs::path& archive);
};

}  // namespace tarvik
