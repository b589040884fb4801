#pragma once

#include "Platform/Basics/Path.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarvik::Practice {

/// Writes a zip archive, byte by byte as it is told: no tool writes what an attacker does. Nothing is compressed, and
/// the same entries give the same bytes.
class ZipWriter {
public:
    struct Entry {
        std::string name;
        std::string content{};
        /// The Unix mode; 0 for a writer that knows none.
        unsigned mode = 0100644;
        /// What the local header says, where that is something else.
        std::optional<std::string> localName{};
        /// Flags of the format: 1 << 11 says that the name is UTF-8.
        unsigned flags = 0;
        /// Extra fields of both headers, as bytes.
        std::string extra{};
        /// What the directory claims of the size.
        std::optional<std::uint32_t> claimedSize{};
        /// Only the data, between which another reader may find it.
        bool isListed = true;
        /// The sizes stand behind the data.
        bool hasDescriptor = false;
        /// "Made by": 3 is Unix.
        unsigned system = 3;
    };

    ZipWriter& add(Entry entry);
    /// A link is an entry whose content is where it leads.
    ZipWriter& addLink(const std::string& name, const std::string& target);
    /// A folder is an entry whose name ends with a slash.
    ZipWriter& addFolder(const std::string& name);

    std::string bytes() const;
    /// Without the directory and its record.
    std::string bytesOfEntries() const;
    /// In the place of what stands there. @throws FileError
    void writeTo(const fs::path& file) const;

    /// An extra field.
    static std::string field(unsigned identifier, std::string_view content);

private:
    std::vector<Entry> m_entries;
};

/// Numbers as archives have them: the low byte first.
std::string lowFirst(std::uint64_t value, int count);

}  // namespace tarvik::Practice
