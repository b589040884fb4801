#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Files/FileError.h"

#include <chrono>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <vector>

/// The one door to the file system for single items. Trees are walked by `TreeWalk`.
///
/// Every operation blocks, may be called from any thread, and throws `FileError` where it says that it fails.
/// Questions (`exists`, `names`, `info`) never fail: what cannot be read counts as absent or empty.
namespace tarvik::Files {

enum class ItemType { regular, folder, symbolicLink, socket, pipe, blockDevice, characterDevice, unknown };

/// What a status call tells of one item. Sizes in bytes.
struct ItemInfo {
    ItemType type = ItemType::unknown;
    std::int64_t size = 0;
    std::int64_t allocatedSize = 0;
    std::uint64_t device = 0;
    std::uint64_t inode = 0;

    bool operator==(const ItemInfo&) const = default;
};

/// Whether both tell of one item, under whatever names. Nothing is no item.
bool isSameItem(const std::optional<ItemInfo>& one, const std::optional<ItemInfo>& other);

/// The type that a status call's mode names.
ItemType typeOfMode(mode_t mode);
ItemInfo infoOfStatus(const struct stat& status);

/// Absolute, with ".", "..", doubled and trailing slashes taken out of the text. Nothing is resolved.
/// A relative path is taken from the working directory. @throws FileError when that is needed and gone.
fs::path standardized(const fs::path& path);
/// True when `path` is `ancestor` itself or lies below it, by their text. Both must be standardized.
bool isAtOrBelow(const fs::path& path, const fs::path& ancestor);
/// The same for what stands there, by whatever spelling: `path` need not be there, and links are not followed. A status
/// call for each folder on the way.
bool isItemAtOrBelow(const fs::path& path, const fs::path& ancestor);

/// Whether something stands at the path, links followed: a dangling link does not exist.
bool exists(const fs::path& path);
/// Whether it is certain that nothing exists at the path: what may not be looked at is not missing.
bool isMissing(const fs::path& path);
/// Whether something stands at the path, a dangling link too.
bool itemExists(const fs::path& path);
/// The item itself, a link not followed.
std::optional<ItemInfo> info(const fs::path& path);
/// The item that a link leads to.
std::optional<ItemInfo> infoFollowingLinks(const fs::path& path);
/// When the content of the item itself last changed, a link not followed.
std::optional<std::chrono::system_clock::time_point> modifiedAt(const fs::path& path);
/// Whether the item itself is a folder; a link to one is not.
bool isFolder(const fs::path& path);
bool isSymbolicLink(const fs::path& path);
/// The text of a link as it stands, or nothing when the item is no link or cannot be read.
std::optional<fs::path> linkText(const fs::path& path);
/// All links resolved, or nothing when the path leads nowhere.
std::optional<fs::path> resolved(const fs::path& path);
/// The names in a folder, in byte order, without "." and "..". Empty when the folder cannot be read.
std::vector<std::string> names(const fs::path& folder);

/// The text of a link. @throws FileError when the item is no symbolic link.
fs::path readLink(const fs::path& path);
/// Makes the folder and those above it that are missing. An existing folder is fine.
void createFolder(const fs::path& folder);
/// Makes the folder, as open as any new one. False when something stands there already.
/// @throws FileError when nothing can be made there.
bool createNewFolder(const fs::path& folder);
/// The same for the caller alone, to take the place.
bool claim(const fs::path& path);
/// Makes a link at `link` that holds `target` as it stands. @throws FileError also when something is there.
void createSymbolicLink(const fs::path& link, const fs::path& target);
/// Removes a symbolic link. @throws FileError also when something else stands there, which stays.
void removeLink(const fs::path& link);
/// Whether a removal first looks for what would stop it in its middle, or the caller has just done so.
enum class Obstacles { lookedFor, knownToBeNone };
/// A removal that failed in its middle: a part of the item has gone.
class IncompleteRemoval : public FileError {
public:
    using FileError::FileError;
};
/// Removes an item, a folder with its contents, through directory handles and without following links; what is mounted
/// inside is never entered. Removes nothing of a tree in which it finds a `TreeObstacle`. A slash at the end means the
/// item itself too, and "." or ".." no item.
/// @throws FileError, and that is an IncompleteRemoval when something has been removed.
void removeItem(const fs::path& path, Obstacles obstacles = Obstacles::lookedFor);
/// Removes a folder that holds nothing. @throws FileError also when it holds something.
void removeEmptyFolder(const fs::path& folder);
/// Renames within one volume and never replaces what stands at `to`. Where a volume takes both for one name, the item
/// gets the new spelling.
/// @throws FileError with EEXIST when `to` is taken, with EXDEV when `to` is on another volume.
void rename(const fs::path& from, const fs::path& to);
/// Lets two items of one volume take each other's name. On nearly all file systems that is one step, and nobody ever
/// finds one of the names free. Where it takes three, `second` stands at `between`, a free name beside it, for a
/// moment.
/// @throws FileError, with EXDEV when they are on two volumes; both then stand where they stood.
void exchange(const fs::path& first, const fs::path& second, const fs::path& between);
/// Makes a file with the bytes and the permissions and flushes it. @throws FileError also when something stands there;
/// a file that cannot be written whole is removed.
void createFile(const fs::path& path, std::string_view bytes, mode_t permissions = 0644);
/// Writes through a temporary file beside the goal that is flushed and renamed: readers see the old bytes or the new.
void writeDurably(const fs::path& path, std::string_view bytes);
/// The bytes of a regular file. @throws FileError also for a pipe or a device, which may have no end, and with EFBIG
/// for a file of more than `limit` bytes, of which no more than that is read.
std::string read(const fs::path& path, std::int64_t limit = std::numeric_limits<std::int64_t>::max());
/// Waits until everything written so far on the volume that holds `path` has reached the drive.
void flushVolume(const fs::path& path);

}  // namespace tarvik::Files
