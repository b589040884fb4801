#include "ditto/ZipExtraction.h"

#include "Installers/Opening/Cp437.h"
#include "Installers/Opening/ZipBytes.h"
#include "Installers/Opening/ZipHeader.h"
#include "Installers/Opening/ZipListing.h"
#include "Platform/Files/AppleDouble.h"
#include "Platform/Files/FileDescriptor.h"
#include "Platform/Text/Text.h"
#include "ditto/AttributeFile.h"
#include "ditto/ItemError.h"
#include "ditto/PassedOver.h"
#include "ditto/ZipData.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <fcntl.h>
#include <optional>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

namespace tarvik::ditto::ZipExtraction {

namespace {

constexpr std::string_view attributesFolder = "__MACOSX/";
/// What is read into memory whole. No link can be as long as the first (symlink(2)).
constexpr std::uint64_t linkEnd = PATH_MAX;
constexpr std::uint64_t mostAttributes = std::uint64_t{64} << 20U;
constexpr mode_t allPermissions = 0777;
constexpr mode_t privilegedPermissions = 07777;
constexpr mode_t folderWhileWritten = S_IRWXU;

/// What the tool says of an archive as a whole.
class ArchiveError : public ItemError {
public:
    explicit ArchiveError(const std::string& text) : ItemError({}, EINVAL, text), m_text(text) {}
    const char* what() const noexcept override { return m_text.c_str(); }

private:
    std::string m_text;
};

class Extraction {
public:
    Extraction(ZipBytes headers, ZipBytes data, fs::path destination)
        : m_headers(std::move(headers)), m_data(std::move(data)), m_destination(std::move(destination)) {}

    void extractAll();

private:
    struct Item {
        fs::path path;
        mode_t permissions = 0;
        timespec changed{};
    };

    void extractOne(const ZipHeader& entry);
    void makeFolder(const Item& item);
    void makeLink(const Item& item, const ZipHeader& entry);
    void makeFile(const Item& item, const ZipHeader& entry);
    void extractAttributes(const Item& item, const ZipHeader& entry, const fs::path& owner);
    std::string content(const Item& item, const ZipHeader& entry);
    void finish();

    // Two windows on the archive: one stays in the directory.
    ZipBytes m_headers;
    ZipBytes m_data;
    std::uint64_t m_shift = 0;
    const fs::path m_destination;
    /// Folders get their permissions and times when nothing is made in them any more.
    std::vector<Item> m_folders;
    /// Files of attributes that came before their items.
    std::vector<std::pair<fs::path, fs::path>> m_waiting;
};

std::string nameOf(const ZipHeader& entry) {
    return Text::isValidUtf8(entry.name) ? entry.name : Cp437::toUtf8(entry.name);
}

/// A date of a FAT file system, in local time, and in steps of two seconds.
std::time_t timeOfFat(std::uint32_t time) {
    std::tm parts{};
    parts.tm_year = static_cast<int>(time >> 25U) + 80;
    parts.tm_mon = static_cast<int>(time >> 21U & 0xFU) - 1;
    parts.tm_mday = static_cast<int>(time >> 16U & 0x1FU);
    parts.tm_hour = static_cast<int>(time >> 11U & 0x1FU);
    parts.tm_min = static_cast<int>(time >> 5U & 0x3FU);
    parts.tm_sec = static_cast<int>(time & 0x1FU) * 2;
    parts.tm_isdst = -1;
    return std::mktime(&parts);
}

/// The item that the file `name` holds attributes of; nothing when it holds none.
std::optional<std::string> ownerOf(std::string name) {
    if (name.starts_with(attributesFolder)) name.erase(0, attributesFolder.size());
    const std::size_t nameAt = name.rfind('/') + 1;
    constexpr std::size_t markLength = 2;
    if (std::string_view(name).substr(nameAt, markLength) != "._") return std::nullopt;
    return name.erase(nameAt, markLength);
}

void makeFolders(const fs::path& folder) {
    std::error_code error;
    fs::create_directories(folder, error);
    if (error) throw ItemError(folder, error.value());
}

void writeAll(int file, const char* bytes, std::size_t length, const fs::path& path) {
    while (length > 0) {
        const ssize_t count = ::write(file, bytes, length);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) throw ItemError(path, errno);
        bytes += count;
        length -= static_cast<std::size_t>(count);
    }
}

bool isThere(const fs::path& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0;
}

/// Opens the file for new content, empty. What stands there and is no regular file is unlinked first, so that no link
/// is followed and no pipe waited for.
FileDescriptor openNew(const fs::path& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode) && ::unlink(path.c_str()) != 0)
        throw ItemError(path, errno);
    FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!file) throw ItemError(path, errno);
    return file;
}

/// Set-id bits are for the superuser alone, as in a copy.
mode_t allowedPermissions(unsigned permissions) {
    return permissions & (::geteuid() == 0 ? privilegedPermissions : allPermissions);
}

void Extraction::extractAll() {
    const auto directory = ZipListing::find(m_headers);
    if (!directory) throw ArchiveError("Couldn't read PKZip signature");
    m_shift = directory->shift;
    if (!ZipListing::forEach(m_headers, *directory, [&](const ZipHeader& entry) { extractOne(entry); }))
        throw ArchiveError("Couldn't read PKZip signature");
    finish();
}

void Extraction::extractOne(const ZipHeader& entry) {
    const std::string name = nameOf(entry);
    const bool isFolder = entry.kind == ZipHeader::Kind::folder || name.ends_with('/');
    Item item;
    item.path = m_destination.native() + "/" + name;
    const unsigned usual = isFolder ? 0755 : 0644;
    item.permissions = allowedPermissions(entry.mode != 0 ? entry.mode : usual);
    item.changed.tv_sec = entry.changed ? *entry.changed : timeOfFat(entry.changedAsFat);
    if (entry.isEncrypted) throw ItemError(item.path, EPERM);
    if (entry.kind == ZipHeader::Kind::other || PassedOver::isByName(item.path.filename().c_str())) return;
    if (entry.kind == ZipHeader::Kind::link) return makeLink(item, entry);
    if (isFolder) return name.starts_with(attributesFolder) ? void() : makeFolder(item);
    const auto owner = ownerOf(name);
    if (owner) return extractAttributes(item, entry, m_destination.native() + "/" + *owner);
    makeFile(item, entry);
}

void Extraction::makeFolder(const Item& item) {
    fs::path path = item.path;
    while (path.native().size() > 1 && path.native().ends_with('/'))
        path = path.native().substr(0, path.native().size() - 1);
    if (fs::is_directory(path)) return;
    makeFolders(path.parent_path());
    if (::mkdir(path.c_str(), folderWhileWritten) != 0) throw ItemError(path, errno);
    m_folders.push_back({std::move(path), item.permissions, item.changed});
}

void Extraction::makeLink(const Item& item, const ZipHeader& entry) {
    if (entry.size >= linkEnd) throw ItemError(item.path, ENAMETOOLONG);
    const std::string target = content(item, entry);
    makeFolders(item.path.parent_path());
    if (::symlink(target.c_str(), item.path.c_str()) != 0) {
        if (errno != EEXIST || ::unlink(item.path.c_str()) != 0 || ::symlink(target.c_str(), item.path.c_str()) != 0)
            throw ItemError(item.path, errno);
    }
    const std::array times{item.changed, item.changed};
    ::utimensat(AT_FDCWD, item.path.c_str(), times.data(), AT_SYMLINK_NOFOLLOW);
}

void Extraction::makeFile(const Item& item, const ZipHeader& entry) {
    makeFolders(item.path.parent_path());
    // An existing file is written into: the page only says that a file is overwritten.
    FileDescriptor file = openNew(item.path);
    ZipData::read(m_data, entry, m_shift, item.path,
                  [&](std::string_view bytes) { writeAll(file.get(), bytes.data(), bytes.size(), item.path); });
    const std::array times{item.changed, item.changed};
    if (::fchmod(file.get(), item.permissions) != 0 || ::futimens(file.get(), times.data()) != 0)
        throw ItemError(item.path, errno);
    if (::close(file.release()) != 0 && errno != EINTR) throw ItemError(item.path, errno);
}

void Extraction::extractAttributes(const Item& item, const ZipHeader& entry, const fs::path& owner) {
    if (entry.size > mostAttributes) throw ItemError(item.path, EFBIG);
    const std::string bytes = content(item, entry);
    const bool areAttributes = AppleDouble::isHeader(bytes);
    if (areAttributes && isThere(owner) && AttributeFile::give(AttributeFile::read(bytes), owner)) return;
    // Where there is no place for attributes, a Mac keeps them in a file beside the item.
    const fs::path beside = areAttributes ? owner.parent_path() / ("._" + owner.filename().native()) : item.path;
    makeFolders(beside.parent_path());
    const FileDescriptor file = openNew(beside);
    writeAll(file.get(), bytes.data(), bytes.size(), beside);
    if (areAttributes && !isThere(owner)) m_waiting.emplace_back(beside, owner);
}

std::string Extraction::content(const Item& item, const ZipHeader& entry) {
    std::string whole;
    ZipData::read(m_data, entry, m_shift, item.path, [&](std::string_view bytes) { whole += bytes; });
    return whole;
}

void Extraction::finish() {
    for (const auto& [beside, owner] : m_waiting) {
        const FileDescriptor file(::open(beside.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
        struct stat status {};
        if (!file || !isThere(owner) || ::fstat(file.get(), &status) != 0) continue;
        std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
        if (::pread(file.get(), bytes.data(), bytes.size(), 0) != status.st_size) continue;
        if (AttributeFile::give(AttributeFile::read(bytes), owner)) ::unlink(beside.c_str());
    }
    for (auto folder = m_folders.rbegin(); folder != m_folders.rend(); ++folder) {
        const std::array times{folder->changed, folder->changed};
        if (::utimensat(AT_FDCWD, folder->path.c_str(), times.data(), AT_SYMLINK_NOFOLLOW) != 0 ||
            ::chmod(folder->path.c_str(), folder->permissions) != 0)
            throw ItemError(folder->path, errno);
    }
}

/// The first bytes of an archive: of its first entry, or of the end of an empty one.
bool beginsAsArchive(const fs::path& file) {
    const FileDescriptor handle(::open(file.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    std::array<char, 4> bytes{};
    if (!handle) throw ItemError(file, errno);
    if (::read(handle.get(), bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) return false;
    const std::string_view signature(bytes.data(), bytes.size());
    return signature == std::string_view("PK\3\4", 4) || signature == std::string_view("PK\5\6", 4);
}

}  // namespace

void extract(const fs::path& archive, const fs::path& destination, Diagnostics& diagnostics) {
    triesToCopy(diagnostics, [&] {
        auto headers = ZipBytes::open(archive);
        auto data = ZipBytes::open(archive);
        if (!beginsAsArchive(archive) || !headers || !data) throw ArchiveError("Couldn't read PKZip signature");
        makeFolders(destination);
        Extraction(std::move(*headers), std::move(*data), destination).extractAll();
    });
}

}  // namespace tarvik::ditto::ZipExtraction
