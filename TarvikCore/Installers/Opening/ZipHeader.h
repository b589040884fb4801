#pragma once

#include "Installers/Opening/ZipBytes.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarvik {

/// What one of the two headers says of an entry: the local one before its data, or the central one in the directory at
/// the archive's end. The format is that of APPNOTE.TXT, "Local file header" and "Central directory structure".
struct ZipHeader {
    enum class Kind { file, folder, link, other };

    static constexpr std::string_view localSignature{"PK\3\4", 4};
    static constexpr std::string_view centralSignature{"PK\1\2", 4};

    /// As it stands. Nothing says of what encoding it is, unless `isUtf8` does.
    std::string name;
    /// The same name in UTF-8, where the entry brings it along ("Info-ZIP Unicode Path").
    std::string unicodeName;
    bool isUtf8 = false;
    /// The sizes of a local header may be 0 then, and stand behind the data.
    bool hasDescriptor = false;
    /// What the entry is by its Unix mode; a local header hardly ever tells.
    Kind kind = Kind::file;
    /// The Unix mode itself, of a central header; 0 where the writer knew none.
    unsigned mode = 0;
    bool isEncrypted = false;
    /// 0 for data that are stored as they are, 8 for "deflate".
    unsigned method = 0;
    /// CRC-32 of the unpacked data.
    std::uint32_t checkSum = 0;
    /// When the content last changed, in seconds since 1970, where an entry brings that along ("extended timestamp").
    std::optional<std::int64_t> changed{};
    /// The same in local time, in the form of a FAT file system: the date in the upper half.
    std::uint32_t changedAsFat = 0;
    /// Both in bytes, as they are claimed.
    std::uint64_t storedSize = 0;
    std::uint64_t size = 0;
    /// Of a central header: where the local one is. The archive may begin later than the file.
    std::uint64_t localOffset = 0;
    /// What the header itself takes, in bytes.
    std::size_t length = 0;

    /// The header at `offset`; nothing when there is none, or not all of it. What no writer would write is none.
    static std::optional<ZipHeader> localAt(ZipBytes& bytes, std::uint64_t offset);
    static std::optional<ZipHeader> centralAt(ZipBytes& bytes, std::uint64_t offset);

    /// In how many ways a reader may take the name: as UTF-8, as CP437, as what it brings along. Each once.
    std::vector<std::string> names() const;
};

}  // namespace tarvik
