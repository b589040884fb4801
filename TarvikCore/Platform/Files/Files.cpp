#include "Platform/Files/Files.h"

#include "Platform/Basics/Identifier.h"
#include "Platform/Files/FileDescriptor.h"
#include "Platform/Files/FolderListing.h"
#include "Platform/Files/StoredSpelling.h"
#include "Platform/Files/SystemCalls.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

namespace tarvik::Files {

namespace {

std::optional<struct stat> statusOf(const fs::path& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0) return std::nullopt;
    return status;
}

/// Writes all bytes. @returns 0 or an errno value.
int writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return errno;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}

/// Whether there is nothing to take out of the text of an absolute path: most paths are so, and putting one together
/// again takes longer than a status call.
bool isStandardized(std::string_view text) {
    if (!text.starts_with('/') || text.size() == 1 || text.ends_with('/')) return text == "/";
    for (std::size_t slash = 0; slash != std::string_view::npos; slash = text.find('/', slash + 1)) {
        const std::string_view rest = text.substr(slash + 1);
        if (rest.starts_with('/')) return false;
        if (rest.starts_with('.') && (rest == "." || rest == ".." || rest.starts_with("./") || rest.starts_with("../")))
            return false;
    }
    return true;
}

/// False when something stands there already.
bool makeFolder(const fs::path& folder, mode_t mode) {
    if (::mkdir(folder.c_str(), mode) == 0) return true;
    if (errno == EEXIST) return false;
    throw FileError("create the folder", folder, errno);
}

}  // namespace

ItemType typeOfMode(mode_t mode) {
    switch (mode & static_cast<mode_t>(S_IFMT)) {
        case S_IFREG:
            return ItemType::regular;
        case S_IFDIR:
            return ItemType::folder;
        case S_IFLNK:
            return ItemType::symbolicLink;
        case S_IFSOCK:
            return ItemType::socket;
        case S_IFIFO:
            return ItemType::pipe;
        case S_IFBLK:
            return ItemType::blockDevice;
        case S_IFCHR:
            return ItemType::characterDevice;
        default:
            return ItemType::unknown;
    }
}

ItemInfo infoOfStatus(const struct stat& status) {
    return {typeOfMode(status.st_mode), static_cast<std::int64_t>(status.st_size),
            static_cast<std::int64_t>(status.st_blocks) * 512, static_cast<std::uint64_t>(status.st_dev),
            static_cast<std::uint64_t>(status.st_ino)};
}

bool isSameItem(const std::optional<ItemInfo>& one, const std::optional<ItemInfo>& other) {
    return one && other && one->device == other->device && one->inode == other->inode;
}

fs::path standardized(const fs::path& path) {
    if (path.empty() || isStandardized(path.native())) return path;
    fs::path absolute = path;
    if (path.is_relative()) {
        std::error_code error;
        absolute = fs::current_path(error) / path;
        if (error) throw FileError("find the working directory of", path, error.value());
    }
    fs::path result = absolute.lexically_normal();
    if (!result.has_filename() && result.has_parent_path()) result = result.parent_path();
    return result;
}

bool isAtOrBelow(const fs::path& path, const fs::path& ancestor) {
    const auto [end, ignored] = std::mismatch(ancestor.begin(), ancestor.end(), path.begin(), path.end());
    return end == ancestor.end();
}

bool isItemAtOrBelow(const fs::path& path, const fs::path& ancestor) {
    if (isAtOrBelow(path, ancestor)) return true;
    const auto item = info(ancestor);
    if (!item) return false;
    for (fs::path place = path;; place = place.parent_path()) {
        if (isSameItem(info(place), item)) return true;
        if (place == place.parent_path()) return false;
    }
}

bool exists(const fs::path& path) {
    return infoFollowingLinks(path).has_value();
}

bool isMissing(const fs::path& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) != 0 && (errno == ENOENT || errno == ENOTDIR || errno == ELOOP);
}

bool itemExists(const fs::path& path) {
    return statusOf(path).has_value();
}

std::optional<ItemInfo> info(const fs::path& path) {
    const auto status = statusOf(path);
    return status ? std::optional(infoOfStatus(*status)) : std::nullopt;
}

std::optional<ItemInfo> infoFollowingLinks(const fs::path& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return std::nullopt;
    return infoOfStatus(status);
}

std::optional<std::chrono::system_clock::time_point> modifiedAt(const fs::path& path) {
    using namespace std::chrono;
    const auto status = statusOf(path);
    if (!status) return std::nullopt;
    const timespec time = SystemCalls::contentChangeTime(*status);
    return system_clock::time_point(
        duration_cast<system_clock::duration>(seconds(time.tv_sec) + nanoseconds(time.tv_nsec)));
}

bool isFolder(const fs::path& path) {
    const auto status = statusOf(path);
    return status && S_ISDIR(status->st_mode);
}

bool isSymbolicLink(const fs::path& path) {
    const auto status = statusOf(path);
    return status && S_ISLNK(status->st_mode);
}

std::optional<fs::path> linkText(const fs::path& path) {
    char text[PATH_MAX];
    const ssize_t length = ::readlink(path.c_str(), text, sizeof text);
    if (length < 0) return std::nullopt;
    return fs::path(std::string(text, static_cast<std::size_t>(length)));
}

std::optional<fs::path> resolved(const fs::path& path) {
    std::error_code error;
    fs::path result = fs::canonical(path, error);
    return error ? std::nullopt : std::optional(std::move(result));
}

std::vector<std::string> names(const fs::path& folder) {
    std::vector<std::string> result;
    const FileDescriptor handle(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!handle) return result;
    FolderListing listing;
    listing.read(handle.get(), false);
    listing.sortByName();
    result.reserve(listing.size());
    for (std::size_t index = 0; index < listing.size(); ++index) result.emplace_back(listing.name(index));
    return result;
}

fs::path readLink(const fs::path& path) {
    if (auto text = linkText(path)) return std::move(*text);
    throw FileError("read the link", path, errno);
}

void createFolder(const fs::path& folder) {
    std::error_code error;
    fs::create_directories(folder, error);
    if (!error && !fs::is_directory(folder, error) && !error) error = std::make_error_code(std::errc::not_a_directory);
    if (error) throw FileError("create the folder", folder, error.value());
}

bool createNewFolder(const fs::path& folder) {
    return makeFolder(folder, 0777);
}

bool claim(const fs::path& path) {
    return makeFolder(path, 0700);
}

void createSymbolicLink(const fs::path& link, const fs::path& target) {
    if (::symlink(target.c_str(), link.c_str()) != 0) throw FileError("create the link", link, errno);
}

void removeLink(const fs::path& link) {
    readLink(link);
    if (::unlink(link.c_str()) != 0) throw FileError("remove the link", link, errno);
}

void rename(const fs::path& from, const fs::path& to) {
    int error = SystemCalls::renameExclusively(from, to);
    // Nothing else stands there: it is the item itself, which gets another spelling of its name.
    if (error == EEXIST && from != to && StoredSpelling::areOneName(from, to))
        error = ::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
    if (error) throw FileError("move", from.native() + " to " + to.native(), error);
}

void exchange(const fs::path& first, const fs::path& second, const fs::path& between) {
    const int error = SystemCalls::exchangeNames(first, second);
    if (error == 0) return;
    if (error != ENOTSUP) throw FileError("exchange", first.native() + " and " + second.native(), error);
    Files::rename(second, between);
    bool hasFirstMoved = false;
    try {
        Files::rename(first, second);
        hasFirstMoved = true;
        Files::rename(between, first);
    } catch (...) {
        if (hasFirstMoved) ignoringFailure([&] { Files::rename(second, first); });
        ignoringFailure([&] { Files::rename(between, second); });
        throw;
    }
}

void createFile(const fs::path& path, std::string_view bytes, mode_t permissions) {
    const FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!file) throw FileError("create", path, errno);
    int error = writeAll(file.get(), bytes);
    if (!error && ::fchmod(file.get(), permissions) != 0) error = errno;
    if (!error) error = SystemCalls::flushFile(file.get());
    if (!error) return;
    ::unlink(path.c_str());
    throw FileError("write", path, error);
}

void writeDurably(const fs::path& path, std::string_view bytes) {
    std::string temporary = path.native() + ".XXXXXX";
    const FileDescriptor file(::mkstemp(temporary.data()));
    if (!file) throw FileError("write", path, errno);
    int error = writeAll(file.get(), bytes);
    if (!error && ::fchmod(file.get(), 0644) != 0) error = errno;
    if (!error) error = SystemCalls::flushFile(file.get());
    if (!error && ::rename(temporary.c_str(), path.c_str()) != 0) error = errno;
    if (error) {
        ::unlink(temporary.c_str());
        throw FileError("write", path, error);
    }
    const FileDescriptor folder(::open(path.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder)
        SystemCalls::flushFile(
            folder.get());  // Not every file system can flush a folder; the file itself is safe by now.
}

std::string read(const fs::path& path, std::int64_t limit) {
    // Opening never waits, as it would for a pipe that nobody writes to.
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status {};
    if (!file || ::fstat(file.get(), &status) != 0) throw FileError("read", path, errno);
    if (S_ISDIR(status.st_mode)) throw FileError("read", path, EISDIR);
    if (!S_ISREG(status.st_mode)) throw FileError("read", path, ENOTSUP);
    if (status.st_size > limit) throw FileError("read", path, EFBIG);
    std::string bytes;
    char buffer[64 * 1024];
    while (true) {
        const ssize_t length = ::read(file.get(), buffer, sizeof buffer);
        if (length < 0 && errno == EINTR) continue;
        if (length < 0) throw FileError("read", path, errno);
        if (length == 0) return bytes;
        // The file may have grown meanwhile, and files that the system makes up tell no size.
        if (length > limit - static_cast<std::int64_t>(bytes.size())) throw FileError("read", path, EFBIG);
        bytes.append(buffer, static_cast<std::size_t>(length));
    }
}

void flushVolume(const fs::path& path) {
    if (const int error = SystemCalls::flushVolume(path)) throw FileError("flush", path, error);
}

}  // namespace tarvik::Files
