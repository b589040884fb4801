#pragma once

#include "Copying/ChangeWatch.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <optional>
#include <string>
#include <sys/stat.h>

namespace tarvik {

/// Finds out whether an application was written to while it was copied: its copy could have the right sizes and the
/// wrong bytes. On a volume that is read-only, such as that of an image, nothing is.
class SourceWatch {
public:
    enum class Depth {
        writes,
        mappedWrites,  ///< those through a memory mapping too, for a source that is not to stay: its volume is flushed
    };

    /// Begins; nothing may be copied before. Blocks. @throws FileError when a flush fails.
    SourceWatch(fs::path source, Depth depth);

    /// Why the copy cannot be trusted, in words, or nothing. One status call an item. Blocks; never fails.
    std::optional<std::string> reasonAgainstCopy(const Host& host) const;

private:
    fs::path m_source;
    bool m_isReadOnly;
    ChangeWatch::Mark m_start;
    std::optional<struct stat> m_status;
};

}  // namespace tarvik
