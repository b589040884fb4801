#include "Installers/Opening/DiskImageNote.h"

#include "Copying/ItemLock.h"
#include "Installers/Opening/DiskImageTool.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Basics/Identifier.h"
#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/ItemIdentity.h"
#include "Platform/Machine/SystemFolders.h"
#include "Platform/Text/PropertyList.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace tarvik {

namespace {

constexpr std::string_view namePrefix = "TarvikImage-";
constexpr std::size_t identifierLength = 36;
/// Between what was there before, the tool's answer, and what stands at the mount points. No list holds one.
constexpr char separator = '\0';
constexpr std::int64_t largestNote = std::int64_t{32} << 20;

constexpr const char* imageKey = "image";
constexpr const char* itemsKey = "items";

PropertyList bytesOf(const std::string& text) {
    return PropertyList::Data{text};
}

PropertyList listOf(const std::vector<std::string>& names) {
    PropertyList::List list;
    for (const std::string& name : names) list.push_back(bytesOf(name));
    return list;
}

std::string bytesIn(const PropertyList* value) {
    const auto* data = value ? value->as<PropertyList::Data>() : nullptr;
    return data ? data->bytes : std::string();
}

std::vector<std::string> namesIn(const PropertyList* value) {
    std::vector<std::string> names;
    if (const auto* list = value ? value->as<PropertyList::List>() : nullptr)
        for (const PropertyList& name : *list) names.push_back(bytesIn(&name));
    return names;
}

void append(const FileDescriptor& file, const fs::path& path, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(file.get(), bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) throw FileError("write", path, errno);
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

/// Numbers that tell the item at a path from any other; empty when nothing stands there.
std::string identityOf(const fs::path& path) {
    const auto item = ItemIdentity::of(path);
    if (!item) return {};
    return std::to_string(item->inode) + ' ' + std::to_string(item->changed) + ' ' +
           std::to_string(item->born.value_or(0));
}

/// Only this user's own notes are believed.
bool isOurs(const fs::path& note) {
    struct stat status {};
    return ::lstat(note.c_str(), &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == ::geteuid();
}

bool isAnyIn(const DiskImageMount& mount, const std::vector<std::string>& items) {
    const auto wasThere = [&](const std::string& path) {
        return std::find(items.begin(), items.end(), path) != items.end();
    };
    return std::any_of(mount.mountPoints.begin(), mount.mountPoints.end(), wasThere) ||
           std::any_of(mount.devicePaths.begin(), mount.devicePaths.end(), wasThere);
}

}  // namespace

DiskImageNote DiskImageNote::make(const Host& host, const fs::path& image) {
    constexpr int mostAttempts = 5;
    Before before{image, {}};
    for (const fs::path& folder : {SystemFolders::volumes(host), SystemFolders::below(host, "/dev")})
        for (const std::string& name : Files::names(folder)) before.items.push_back(folder / name);
    Files::createFolder(host.temporary);
    fs::path path;
    FileDescriptor file;
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        path = host.temporary / (std::string(namePrefix) + newIdentifier());
        file =
            FileDescriptor(::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_APPEND | O_CLOEXEC, S_IRUSR | S_IWUSR));
        if (!file) throw FileError("create", path, errno);
        // Another start may have cleared it away before it was locked. Where nothing can be locked, nothing is cleared.
        if (::flock(file.get(), LOCK_SH | LOCK_NB) == 0 && ItemLock::isHeldAt(path, file)) break;
    }
    return {std::move(path), std::move(file), std::move(before)};
}

DiskImageNote::DiskImageNote(fs::path path, FileDescriptor file, Before before)
    : m_path(std::move(path)), m_file(std::move(file)), m_before(std::move(before)) {
    const std::string header = PropertyList(PropertyList::Dictionary{{imageKey, bytesOf(m_before.image.native())},
                                                                     {itemsKey, listOf(m_before.items)}})
                                   .xml() +
                               separator;
    m_answerAt = header.size();
    try {
        append(m_file, m_path, header);
    } catch (const FileError&) {
        remove();
        throw;
    }
}

bool DiskImageNote::isName(std::string_view name) {
    return name.starts_with(namePrefix) && name.size() == namePrefix.size() + identifierLength;
}

std::string DiskImageNote::answer() const {
    return Files::read(m_path, largestNote).substr(m_answerAt);
}

bool DiskImageNote::wasThere(const DiskImageMount& mount) const {
    return isAnyIn(mount, m_before.items);
}

void DiskImageNote::keepFor(DiskImageMount& mount) {
    PropertyList::Dictionary identities;
    for (const fs::path& point : mount.mountPoints) identities.emplace(point.native(), identityOf(point));
    mount.note = m_path;
    ignoringFailure([&] { append(m_file, m_path, separator + PropertyList(std::move(identities)).xml()); });
    mount.hold = OpenedHold(std::move(m_file));
}

void DiskImageNote::remove() noexcept {
    ::unlink(m_path.c_str());
    m_file.close();
}

std::optional<DiskImageMount> DiskImageNote::remembered(const fs::path& note) {
    if (!isOurs(note)) return std::nullopt;
    const std::string bytes = Files::read(note, largestNote);
    const std::size_t headerEnd = std::min(bytes.find(separator), bytes.size());
    const auto before = PropertyList::parsed(bytes.substr(0, headerEnd));
    if (!before || headerEnd == bytes.size()) return std::nullopt;
    const std::size_t answerEnd = std::min(bytes.find(separator, headerEnd + 1), bytes.size());

    DiskImageMount mount{.imagePath = bytesIn(before->find(imageKey)), .mountPoints = {}, .devicePaths = {}};
    if (!DiskImageTool::readAnswer(bytes.substr(headerEnd + 1, answerEnd - headerEnd - 1), mount) ||
        isAnyIn(mount, namesIn(before->find(itemsKey))))
        return std::nullopt;
    if (mount.mountPoints.empty()) return mount;
    const auto identities = answerEnd < bytes.size() ? PropertyList::parsed(bytes.substr(answerEnd + 1)) : std::nullopt;
    std::erase_if(mount.mountPoints, [&](const fs::path& point) {
        const std::string identity = identityOf(point);
        return identity.empty() || (identities && identities->text(point.native()) != identity);
    });
    return mount.mountPoints.empty() ? std::nullopt : std::optional(std::move(mount));
}

}  // namespace tarvik
