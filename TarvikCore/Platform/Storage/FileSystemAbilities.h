#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>

namespace tarvik {

/// What the file systems of drives can hold, in one table. Where the system itself tells of a volume (a Mac does, by
/// the resource keys of NSURL), that counts: a driver may add what its format has not.
struct FileSystemAbilities {
    /// As `Volume::formatDescription` spells it where that is no phrase in the user's language, as on a Mac.
    std::string_view format;
    /// Symbolic links.
    bool links;
    /// Permissions and owners.
    bool permissions;
    /// Two items change their names in one step (RENAME_SWAP of renamex_np(2), RENAME_EXCHANGE of rename(2)).
    bool exchange;
    /// "Foo" and "foo" are one name, as the format is usually made.
    bool foldsCase;
    /// Whether a Mac writes to it.
    bool isWritableOnMac;
    /// How far apart two times of change are at least.
    std::chrono::nanoseconds timeStep;
    /// In bytes, where a file can come to that.
    std::optional<std::int64_t> largestFile;

    bool operator==(const FileSystemAbilities&) const = default;

    /// Nothing for a format that the table does not have, network volumes among them: there the server decides. Pure.
    static std::optional<FileSystemAbilities> of(std::string_view format);
};

}  // namespace tarvik
