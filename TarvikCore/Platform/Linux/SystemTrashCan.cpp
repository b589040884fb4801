#include "Platform/Files/ClashNames.h"
#include "Platform/Files/FileDescriptor.h"
#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/SystemCalls.h"
#include "Platform/Linux/TrashInfo.h"
#include "Platform/Machine/TrashCan.h"
#include "Platform/Machine/TrashItem.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace tarvik {

namespace {

/// In a Trash folder: the items, and a record for each.
constexpr const char* itemsFolder = "files";
constexpr const char* recordsFolder = "info";

/// A Trash folder that fits an item, and the item's path as its record tells it.
struct Bin {
    fs::path folder;
    fs::path originalPath;
};

/// Tells mounts apart, where two may show one file system: between them nothing can be renamed.
struct MountKey {
    std::uint64_t mount = 0;
    std::uint64_t device = 0;

    bool operator==(const MountKey&) const = default;
};

/// The mount that the item itself (a link not followed) stands on.
MountKey mountOf(const fs::path& item) {
    struct statx status {};
    if (::statx(AT_FDCWD, item.c_str(), AT_SYMLINK_NOFOLLOW, STATX_TYPE | STATX_MNT_ID, &status) != 0)
        throw FileError("look at", item, errno);
    if ((status.stx_mask & STATX_MNT_ID) != 0) return {.mount = status.stx_mnt_id, .device = 0};
    return {.mount = 0, .device = (std::uint64_t{status.stx_dev_major} << 32U) | status.stx_dev_minor};
}

/// The top folder of the mount that `item` stands on.
fs::path topFolderOf(const fs::path& item, const MountKey& mount) {
    fs::path top = item;
    while (top.has_relative_path() && mountOf(top.parent_path()) == mount) top = top.parent_path();
    return top;
}

/// Whether a volume's shared Trash may be used: a real folder whose sticky bit keeps users from each other's items.
bool isSharedTrash(const fs::path& folder) {
    struct stat status {};
    return ::lstat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && (status.st_mode & S_ISVTX) != 0;
}

bool isUsersOwnFolder(const fs::path& folder) {
    struct stat status {};
    return ::lstat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::getuid();
}

/// The two places of a user's Trash at the top of a volume: in the one that all users share, and by itself.
fs::path sharedTrashOn(const fs::path& top) {
    return top / ".Trash" / std::to_string(::getuid());
}
fs::path ownTrashOn(const fs::path& top) {
    return top / (".Trash-" + std::to_string(::getuid()));
}

/// The user's own Trash folder at the top of a volume, made when it is missing.
fs::path makeTrashOnVolume(const fs::path& top) {
    fs::path inShared = sharedTrashOn(top);
    if (isSharedTrash(inShared.parent_path())) {
        ignoringFailure([&] { TrashItem::makePrivateFolder(inShared); });  // The other place is left to try.
        if (isUsersOwnFolder(inShared)) return inShared;
    }
    fs::path folder = ownTrashOn(top);
    TrashItem::makePrivateFolder(folder);
    if (!isUsersOwnFolder(folder)) throw FileError("use as the Trash", folder, EPERM);
    return folder;
}

/// The longest name that a record may have in `folder`.
std::size_t longestNameIn(const fs::path& folder) {
    const long told = ::pathconf(folder.c_str(), _PC_NAME_MAX);
    return told > 0 ? std::min<std::size_t>(static_cast<std::size_t>(told), NAME_MAX) : NAME_MAX;
}

/// Writes the record to a new file and flushes it. False when its name is taken.
bool writeRecord(const fs::path& record, std::string_view text) {
    const FileDescriptor file(::open(record.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!file && errno == EEXIST) return false;
    if (!file) throw FileError("create", record, errno);
    while (!text.empty()) {
        const ssize_t written = ::write(file.get(), text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) {
            const int failure = errno;
            ::unlink(record.c_str());
            throw FileError("write", record, failure);
        }
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    // An item without a readable record could not be put back: the record must outlive a power cut that the rename
    // does.
    if (const int failure = SystemCalls::flushFile(file.get())) {
        ::unlink(record.c_str());
        throw FileError("write", record, failure);
    }
    return true;
}

/// Moves the item at `place` into `bin`, its record first.
fs::path put(const fs::path& place, const Bin& bin) {
    const fs::path items = bin.folder / itemsFolder;
    const fs::path records = bin.folder / recordsFolder;
    TrashItem::makePrivateFolder(items);
    TrashItem::makePrivateFolder(records);

    const std::string text = TrashInfo::text(bin.originalPath, ::time(nullptr));
    const std::size_t longestName = longestNameIn(records) - TrashInfo::extension.size();
    for (int number = 1;; ++number) {
        const std::string name = ClashNames::numbered(place.filename().native(), number, '.', longestName);
        const fs::path record = records / (name + std::string(TrashInfo::extension));
        if (!writeRecord(record, text)) continue;
        try {
            Files::rename(place, items / name);
            return items / name;
        } catch (const FileError& error) {
            ::unlink(record.c_str());
            // An item without a record stands there: the record's name was free, the item's is not.
            if (error.code() != EEXIST) throw;
        }
    }
}

/// The Trash that the desktop's file managers show, by the rules that they share.
class LinuxTrashCan final : public TrashCan {
public:
    explicit LinuxTrashCan(fs::path homeTrash) : m_homeTrash(std::move(homeTrash)) {}

    fs::path moveToTrash(const fs::path& item) const override {
        const fs::path place = TrashItem::place(item);
        TrashItem::refuseTrashItself(place, Files::resolved(m_homeTrash).value_or(m_homeTrash));
        const MountKey mount = mountOf(place);
        if (!place.has_relative_path() || mountOf(place.parent_path()) != mount)
            throw FileError("move to the Trash", item, EBUSY);

        if (isHomeTrashOn(mount)) {
            makeFolders(m_homeTrash);
            return put(place, {.folder = m_homeTrash, .originalPath = place});
        }
        const fs::path top = topFolderOf(place, mount);
        refuseTrashOnVolume(place, top);
        return put(place, {.folder = makeTrashOnVolume(top), .originalPath = place.lexically_relative(top)});
    }

    std::vector<fs::path> foldersFor(const fs::path& place) const override {
        std::vector<fs::path> folders = {m_homeTrash / itemsFolder};
        fs::path there = place.parent_path();
        while (there.has_relative_path() && !Files::exists(there)) there = there.parent_path();
        ignoringFailure([&] {
            const fs::path real = Files::resolved(there).value_or(there);
            const fs::path top = topFolderOf(real, mountOf(real));
            folders.push_back(sharedTrashOn(top) / itemsFolder);
            folders.push_back(ownTrashOn(top) / itemsFolder);
        });
        return folders;
    }

    void forget(const fs::path& trashed) const noexcept override {
        ignoringFailure([&] {
            if (trashed.parent_path().filename() != itemsFolder) return;
            const fs::path record = trashed.parent_path().parent_path() / recordsFolder /
                                    (trashed.filename().native() + std::string(TrashInfo::extension));
            if (!Files::itemExists(trashed)) ::unlink(record.c_str());
        });
    }

private:
    /// Whether the home's Trash, or the folder in which it would be made, stands on `mount`.
    bool isHomeTrashOn(const MountKey& mount) const {
        fs::path there = m_homeTrash;
        while (there.has_relative_path() && !Files::exists(there)) there = there.parent_path();
        const auto real = Files::resolved(there);
        return real && mountOf(*real) == mount;
    }

    /// Makes the home's Trash, for its owner alone, with the folders above it.
    static void makeFolders(const fs::path& trash) {
        if (Files::exists(trash)) return;
        makeFolders(trash.parent_path());
        TrashItem::makePrivateFolder(trash);
    }

    static void refuseTrashOnVolume(const fs::path& place, const fs::path& top) {
        TrashItem::refuseTrashItself(place, sharedTrashOn(top));
        TrashItem::refuseTrashItself(place, ownTrashOn(top));
    }

    const fs::path m_homeTrash;
};

/// Where the user's data goes below `home`. What the environment names holds for the environment's own home alone.
fs::path dataFolderOf(const fs::path& home) {
    const char* named = std::getenv("XDG_DATA_HOME");
    const char* own = std::getenv("HOME");
    const bool isOwn = own && Files::resolved(own) == Files::resolved(home);
    if (named && isOwn && fs::path(named).is_absolute()) return Files::standardized(named);
    return home / ".local/share";
}

}  // namespace

std::shared_ptr<const TrashCan> makeSystemTrashCan(const fs::path& home) {
    return std::make_shared<LinuxTrashCan>(dataFolderOf(home) / "Trash");
}

}  // namespace tarvik
