#pragma once

#include "Platform/Basics/Path.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarvik::test {

/// What a zip archive holds, byte by byte as a test wants it: no tool writes what an attacker does. Nothing is
/// compressed.
class MadeZip {
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

    MadeZip& add(Entry entry);
    /// A link is an entry whose content is where it leads.
    MadeZip& addLink(const std::string& name, const std::string& target);
    /// A folder is an entry whose name ends with a slash.
    MadeZip& addFolder(const std::string& name);

    std::string bytes() const;
    /// Without the directory and its record.
    std::string bytesOfEntries() const;
    void writeTo(const fs::path& file) const;

    /// An extra field.
    static std::string field(unsigned identifier, std::string_view content);

private:
    std::vector<Entry> m_entries;
};

/// Numbers as archives have them: the low byte first.
std::string lowFirst(std::uint64_t value, int count);

}  // namespace tarvik::test
