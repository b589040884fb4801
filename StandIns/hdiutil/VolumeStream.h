#pragma once

#include "hdiutil/EntrySpool.h"
#include "hdiutil/VolumeWriter.h"

#include <string>
#include <string_view>

namespace tarvik::hdiutil {

/// Cuts the bytes of all items, which come one behind the other, into items, and has them written.
class VolumeStream {
public:
    /// Of `entries`, which have been rewound, those below the folder `container` are the volume's; where that is empty,
    /// all are.
    VolumeStream(EntrySpool& entries, std::string container, VolumeWriter& writer);

    /// @throws Failure when there are more bytes than the entries have, or one cannot be written.
    void take(std::string_view bytes);
    /// @throws Failure when bytes are missing.
    void end();

private:
    bool nextEntry();
    void beginEntry();
    void endEntry();

    EntrySpool& m_entries;
    const std::string m_container;
    VolumeWriter& m_writer;
    Entry m_entry;
    std::string m_path;     // of the entry, below the volume
    bool m_isKept = false;  // whether the entry is the volume's
    bool m_isUnderWay = false;
    std::int64_t m_missing = 0;
    std::string m_text;  // of a link or an attribute
};

}  // namespace tarvik::hdiutil
