#include "hdiutil/Attachments.h"

#include "Platform/Basics/Failure.h"
#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/TreeWalk.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstddef>
#include <fcntl.h>
#include <set>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarvik::hdiutil {

namespace {

constexpr const char* finished = "attached.plist";
constexpr const char* unfinished = "unfinished.plist";
constexpr const char* lockName = "lock";
constexpr int firstNumber = 4;  // Those below are the disks that a Mac has inside.
constexpr std::string_view diskPrefix = "disk";

/// A lock on a file that is still there once it is held: whoever ends the last image takes the file away.
FileDescriptor locked(const fs::path& folder) {
    const fs::path path = folder / lockName;
    while (true) {
        Files::createFolder(folder);
        FileDescriptor lock(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644));
        if (!lock && errno == ENOENT) continue;
        if (!lock) throw FileError("open", path, errno);
        while (::flock(lock.get(), LOCK_EX) != 0)
            if (errno != EINTR) throw FileError("lock", path, errno);
        struct stat held {};
        struct stat there {};
        if (::fstat(lock.get(), &held) == 0 && ::stat(path.c_str(), &there) == 0 && held.st_ino == there.st_ino)
            return lock;
    }
}

std::int64_t inodeOf(const fs::path& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) ? static_cast<std::int64_t>(status.st_ino)
                                                                          : 0;
}

/// Whether the folder that was mounted is still what stands there.
bool stands(const Entity& entity) {
    return !entity.mountPoint.empty() && entity.inode != 0 && inodeOf(entity.mountPoint) == entity.inode;
}

/// Removes a tree whose folders may forbid it.
void removeTree(const fs::path& tree) {
    if (!Files::itemExists(tree)) return;
    TreeWalk walk(tree, {.order = TreeWalk::Order::any});
    ::chmod(tree.c_str(), 0700);
    while (walk.next())
        if (walk.event() == TreeWalk::Event::item && walk.type() == Files::ItemType::folder)
            ::fchmodat(walk.folderHandle(), walk.name(), 0700, 0);
    Files::removeItem(tree, Files::Obstacles::knownToBeNone);
}

/// The first of "Name", "Name 1", "Name 2" that is free takes the volume.
fs::path shownAs(const fs::path& wanted, const fs::path& volume) {
    for (int number = 0;; ++number) {
        fs::path path = wanted;
        if (number > 0) path += " " + std::to_string(number);
        try {
            Files::rename(volume, path);
            return path;
        } catch (const FileError& failure) {
            if (failure.code() != EEXIST && failure.code() != ENOTEMPTY) throw;
        }
    }
}

}  // namespace

Attachments::Attachments(const fs::path& root)
    : m_volumes(root / "Volumes"), m_folder(m_volumes / ".diskimages"), m_lock(locked(m_folder)) {
    for (const int number : numbers())
        if (!Files::exists(folderOf(number) / finished)) abandon(number);
}

Attachments::~Attachments() {
    if (!numbers().empty()) return;
    ::unlink((m_folder / lockName).c_str());
    ::rmdir(m_folder.c_str());
}

std::optional<Attachment> Attachments::withIdentity(const std::string& identity) const {
    for (const int number : numbers()) {
        Attachment attachment = recordOf(number);
        const bool isWhole =
            std::all_of(attachment.entities.begin(), attachment.entities.end(),
                        [](const Entity& entity) { return entity.mountPoint.empty() || stands(entity); });
        if (attachment.identity == identity && isWhole) return attachment;
    }
    return std::nullopt;
}

int Attachments::freeNumber() const {
    std::set<std::string> taken;  // By what devices are called: a container of APFS has a number of its own.
    for (const int number : numbers())
        for (const Entity& entity : recordOf(number).entities) taken.insert(entity.device);
    int number = firstNumber;
    while (taken.contains("/dev/disk" + std::to_string(number))) ++number;
    return number;
}

fs::path Attachments::begin(int number) {
    Files::createFolder(folderOf(number));
    return folderOf(number);
}

void Attachments::show(int number, Attachment& attachment, const std::vector<fs::path>& folders) {
    std::size_t next = 0;
    for (Entity& entity : attachment.entities)
        if (!entity.mountPoint.empty()) entity.inode = inodeOf(folders[next++]);
    const fs::path record = folderOf(number) / unfinished;
    next = 0;
    for (Entity& entity : attachment.entities) {
        if (entity.mountPoint.empty()) continue;
        // The folder is known by its number wherever it comes to stand, so the record may say where it shall before.
        const fs::path wanted = entity.mountPoint;
        for (int copy = 0; Files::itemExists(entity.mountPoint); ++copy)
            entity.mountPoint = wanted.native() + " " + std::to_string(copy + 1);
        Files::writeDurably(record, AttachmentRecord::kept(attachment).xml());
        entity.mountPoint = shownAs(entity.mountPoint, folders[next++]);
        Files::writeDurably(record, AttachmentRecord::kept(attachment).xml());
        // Nothing is put into a volume that is read-only.
        struct stat status {};
        if (::stat(entity.mountPoint.c_str(), &status) == 0)
            ::chmod(entity.mountPoint.c_str(), (status.st_mode & 0555U) | 0500U);
    }
    Files::rename(record, folderOf(number) / finished);
}

void Attachments::abandon(int number) noexcept {
    ignoringFailure([&] {
        const fs::path folder = folderOf(number);
        hide(AttachmentRecord::read(PropertyList::dictionaryAt(folder / unfinished)), folder);
        removeTree(folder);
    });
}

std::optional<int> Attachments::numberOf(std::string_view target) const {
    const auto path = Files::resolved(fs::path(target));
    std::string device(target);
    if (device.starts_with(diskPrefix)) device.insert(0, "/dev/");
    for (const int number : numbers())
        for (const Entity& entity : recordOf(number).entities) {
            if (entity.device == device) return number;
            if (path && stands(entity) && *path == entity.mountPoint) return number;
        }
    return std::nullopt;
}

void Attachments::end(int number) {
    const fs::path folder = folderOf(number);
    const Attachment attachment = recordOf(number);
    Files::rename(folder / finished, folder / unfinished);
    hide(attachment, folder);
    removeTree(folder);
}

fs::path Attachments::folderOf(int number) const {
    return m_folder / (std::string(diskPrefix) + std::to_string(number));
}

std::vector<int> Attachments::numbers() const {
    std::vector<int> numbers;
    for (const std::string& name : Files::names(m_folder)) {
        int number = 0;
        if (!name.starts_with(diskPrefix)) continue;
        const auto [end, error] = std::from_chars(name.data() + diskPrefix.size(), name.data() + name.size(), number);
        if (error == std::errc() && end == name.data() + name.size()) numbers.push_back(number);
    }
    return numbers;
}

Attachment Attachments::recordOf(int number) const {
    return AttachmentRecord::read(PropertyList::dictionaryAt(folderOf(number) / finished));
}

/// Takes the volumes off the places where they are shown, each in one step.
void Attachments::hide(const Attachment& attachment, const fs::path& folder) {
    for (const Entity& entity : attachment.entities) {
        if (!stands(entity)) continue;
        ::chmod(entity.mountPoint.c_str(), 0700);  // Its entry for the folder above changes.
        Files::rename(entity.mountPoint, folder / ("gone-" + std::to_string(entity.inode)));
    }
}

}  // namespace tarvik::hdiutil
