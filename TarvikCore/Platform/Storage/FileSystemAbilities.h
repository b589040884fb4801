#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace tarvik {

/// What a move asks of the file systems of drives, in one table: for the rest, the volume itself is tried. Where the
/// system itself tells of a volume (a Mac does, by the resource keys of NSURL), that counts: a driver may add what its
/// format has not.
struct FileSystemAbilities {
    /// As `Volume::formatDescription` spells it where that is no phrase in the user's language, as on a Mac.
    std::string_view format;
    /// Symbolic links.
    bool links;
    /// Permissions and owners.
    bool permissions;
    /// "Foo" and "foo" are one name, as the format is usually made.
    bool foldsCase;
    /// In bytes, where a file can come to that.
    std::optional<std::int64_t> largestFile;

    bool operator==(const FileSystemAbilities&) const = default;

    /// Nothing for a format that the table does not have, network volumes among them: there the server decides. Pure.
    static std::optional<FileSystemAbilities> of(std::string_view format);
};

}  // namespace tarvik
