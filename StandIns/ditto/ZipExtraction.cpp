#include "ditto/ZipExtraction.h"

#include "Installers/Opening/Cp437.h"
#include "Platform/Files/AppleDouble.h"
#include "Platform/Files/FileDescriptor.h"
#include "Platform/Processes/Utf8Locale.h"
#include "Platform/Text/Text.h"
#include "ditto/AttributeFile.h"
#include "ditto/ItemError.h"
#include "ditto/PassedOver.h"

#include <archive.h>
#include <archive_entry.h>

#include <array>
#include <cerrno>
#include <clocale>
#include <cstddef>
#include <ctime>
#include <fcntl.h>
#include <memory>
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
constexpr mode_t allPermissions = 0777;
constexpr mode_t privilegedPermissions = 07777;
constexpr mode_t folderWhileWritten = S_IRWXU;

struct ArchiveEnd {
    void operator()(archive* reader) const { ::archive_read_free(reader); }
};
using Reader = std::unique_ptr<archive, ArchiveEnd>;

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
    Extraction(archive* reader, fs::path destination) : m_reader(reader), m_destination(std::move(destination)) {}

    void extractAll();

private:
    struct Item {
        fs::path path;
        mode_t permissions = 0;
        timespec changed{};
    };

    void extractOne(archive_entry* entry);
    void makeFolder(const Item& item);
    void makeLink(const Item& item, archive_entry* entry);
    void makeFile(const Item& item);
    void extractAttributes(const Item& item, const fs::path& owner);
    void writeContent(int file, const fs::path& path);
    std::string content(const fs::path& path);
    void finish();
    [[noreturn]] void failToRead(const fs::path& path);

    archive* m_reader;
    const fs::path m_destination;
    /// Folders get their permissions and times when nothing is made in them any more.
    std::vector<Item> m_folders;
    /// Files of attributes that came before their items.
    std::vector<std::pair<fs::path, fs::path>> m_waiting;
};

std::string nameOf(archive_entry* entry) {
    const char* name = ::archive_entry_pathname(entry);
    if (!name) name = ::archive_entry_pathname_utf8(entry);
    if (!name) throw ArchiveError("Illegal byte sequence");
    return Text::isValidUtf8(name) ? std::string(name) : Cp437::toUtf8(name);
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

/// Set-id bits are for the superuser alone, as in a copy.
mode_t allowedPermissions(mode_t permissions) {
    return permissions & (::geteuid() == 0 ? privilegedPermissions : allPermissions);
}

void Extraction::extractAll() {
    for (;;) {
        archive_entry* entry = nullptr;
        const int result = ::archive_read_next_header(m_reader, &entry);
        if (result == ARCHIVE_EOF) break;
        if (result == ARCHIVE_RETRY) continue;
        if (result == ARCHIVE_FATAL || !entry) failToRead(m_destination);
        extractOne(entry);
    }
    finish();
}

void Extraction::extractOne(archive_entry* entry) {
    const std::string name = nameOf(entry);
    Item item;
    item.path = m_destination.native() + "/" + name;
    item.permissions = allowedPermissions(::archive_entry_perm(entry));
    item.changed = {::archive_entry_mtime(entry), ::archive_entry_mtime_nsec(entry)};
    if (::archive_entry_is_encrypted(entry)) throw ItemError(item.path, EPERM);
    const bool isBelowAttributes = name.starts_with(attributesFolder);
    switch (::archive_entry_filetype(entry)) {
        case AE_IFDIR: return isBelowAttributes ? void() : makeFolder(item);
        case AE_IFLNK: return makeLink(item, entry);
        case AE_IFREG:
            if (PassedOver::isByName(item.path.filename().c_str())) return;
            if (const auto owner = ownerOf(name)) return extractAttributes(item, m_destination.native() + "/" + *owner);
            return makeFile(item);
        default: return;
    }
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

void Extraction::makeLink(const Item& item, archive_entry* entry) {
    const char* target = ::archive_entry_symlink(entry);
    if (!target) target = ::archive_entry_symlink_utf8(entry);
    if (!target) failToRead(item.path);
    makeFolders(item.path.parent_path());
    if (::symlink(target, item.path.c_str()) != 0) {
        if (errno != EEXIST || ::unlink(item.path.c_str()) != 0 || ::symlink(target, item.path.c_str()) != 0)
            throw ItemError(item.path, errno);
    }
    const std::array times{item.changed, item.changed};
    ::utimensat(AT_FDCWD, item.path.c_str(), times.data(), AT_SYMLINK_NOFOLLOW);
}

void Extraction::makeFile(const Item& item) {
    makeFolders(item.path.parent_path());
    // An existing file is written into, and a link followed: the page only says that a file is overwritten.
    FileDescriptor file(::open(item.path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!file) throw ItemError(item.path, errno);
    writeContent(file.get(), item.path);
    const std::array times{item.changed, item.changed};
    if (::fchmod(file.get(), item.permissions) != 0 || ::futimens(file.get(), times.data()) != 0)
        throw ItemError(item.path, errno);
    if (::close(file.release()) != 0 && errno != EINTR) throw ItemError(item.path, errno);
}

void Extraction::extractAttributes(const Item& item, const fs::path& owner) {
    const std::string bytes = content(item.path);
    const bool areAttributes = AppleDouble::isHeader(bytes);
    if (areAttributes && isThere(owner) && AttributeFile::give(AttributeFile::read(bytes), owner)) return;
    // Where there is no place for attributes, a Mac keeps them in a file beside the item.
    const fs::path beside =
        areAttributes ? owner.parent_path() / ("._" + owner.filename().native()) : item.path;
    makeFolders(beside.parent_path());
    FileDescriptor file(::open(beside.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!file) throw ItemError(beside, errno);
    writeAll(file.get(), bytes.data(), bytes.size(), beside);
    if (areAttributes && !isThere(owner)) m_waiting.emplace_back(beside, owner);
}

void Extraction::writeContent(int file, const fs::path& path) {
    for (;;) {
        const void* block = nullptr;
        std::size_t length = 0;
        la_int64_t offset = 0;
        const int result = ::archive_read_data_block(m_reader, &block, &length, &offset);
        if (result == ARCHIVE_EOF) return;
        if (result != ARCHIVE_OK) failToRead(path);
        writeAll(file, static_cast<const char*>(block), length, path);
    }
}

std::string Extraction::content(const fs::path& path) {
    std::string bytes;
    for (;;) {
        const void* block = nullptr;
        std::size_t length = 0;
        la_int64_t offset = 0;
        const int result = ::archive_read_data_block(m_reader, &block, &length, &offset);
        if (result == ARCHIVE_EOF) return bytes;
        if (result != ARCHIVE_OK) failToRead(path);
        bytes.append(static_cast<const char*>(block), length);
    }
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

void Extraction::failToRead(const fs::path& path) {
    const char* reason = ::archive_error_string(m_reader);
    throw ItemError(path, EIO, reason ? reason : "Input/output error");
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
    constexpr std::size_t blockSize = std::size_t{1} << 18;
    std::setlocale(LC_CTYPE, Utf8Locale::name().c_str());
    triesToCopy(diagnostics, [&] {
        if (!beginsAsArchive(archive)) throw ArchiveError("Couldn't read PKZip signature");
        makeFolders(destination);
        const Reader reader(::archive_read_new());
        ::archive_read_support_format_zip_seekable(reader.get());
        if (::archive_read_open_filename(reader.get(), archive.c_str(), blockSize) != ARCHIVE_OK)
            throw ArchiveError(::archive_error_string(reader.get()));
        Extraction(reader.get(), destination).extractAll();
    });
}

}  // namespace tarvik::ditto::ZipExtraction
