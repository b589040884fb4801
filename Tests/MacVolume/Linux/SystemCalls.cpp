// What a Mac's kernel tells of an item and Linux has no call for, asked of a `MacVolume`. Programs that this is linked
// into take these functions before those of the core's own file for Linux; all else there is the same.
#include "Platform/Files/SystemCalls.h"

#include "Platform/Files/AccessList.h"
#include "Platform/Files/AppleDouble.h"
#include "Platform/Files/FileDescriptor.h"
#include "Support/MacAttributes.h"

#include <fmt/format.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

namespace tarvik::SystemCalls {

namespace {

using test::MacAttribute::denyDelete;
using test::MacAttribute::denyDeleteInside;

/// The text of an attribute of the item itself, a link not followed; empty on another kind of volume.
std::string attribute(const std::string& item, const char* name) {
    std::array<char, 32> text{};
    const ssize_t length = ::lgetxattr(item.c_str(), name, text.data(), text.size());
    return length < 0 ? std::string() : std::string(text.data(), static_cast<std::size_t>(length));
}

std::string pathOf(int folderHandle, const char* name) {
    return folderHandle == AT_FDCWD || *name == '/' ? name : fmt::format("/proc/self/fd/{}/{}", folderHandle, name);
}

std::uint32_t flagsOf(const std::string& item) {
    const std::string text = attribute(item, test::MacAttribute::flags);
    std::uint32_t flags = 0;
    std::from_chars(text.data(), text.data() + text.size(), flags, 16);
    return flags;
}

bool isOnAnotherVolume(int folderHandle, const char* name) {
    const FileDescriptor item(::openat(folderHandle, name, O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat own {};
    struct stat above {};
    return item && ::fstat(item.get(), &own) == 0 && ::fstatat(item.get(), "..", &above, 0) == 0 &&
           own.st_dev != above.st_dev;
}

}  // namespace

/// As F_FULLFSYNC of fcntl(2) on a Mac; what is no `MacVolume` is flushed as Linux does it.
int flushFile(int handle) {
    if (::fsync(handle) != 0) return errno;
    ::fsetxattr(handle, test::MacAttribute::flushFile, "1", 1, 0);
    return 0;
}

int flushVolume(const fs::path& path) {
    const FileDescriptor item(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!item || ::syncfs(item.get()) != 0) return errno;
    ::fsetxattr(item.get(), test::MacAttribute::flushVolume, "1", 1, 0);
    return 0;
}

int readGuard(int folderHandle, const char* name, ItemGuard& guard) {
    struct stat status {};
    if (::fstatat(folderHandle, name, &status, AT_SYMLINK_NOFOLLOW) != 0) return errno;
    guard = {.mode = status.st_mode,
             .owner = status.st_uid,
             .isMountPoint = S_ISDIR(status.st_mode) && isOnAnotherVolume(folderHandle, name),
             .flags = flagsOf(pathOf(folderHandle, name))};
    return 0;
}

int deletionDenied(int folderHandle, const char* name) {
    const std::string item = pathOf(folderHandle, name);
    const auto slash = item.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : item.substr(0, slash + 1);
    return attribute(item, denyDelete) == "1" || attribute(folder, denyDeleteInside) == "1" ? EACCES : 0;
}

bool hasHiddenFlag(int folderHandle, const char* name) {
    return (flagsOf(pathOf(folderHandle, name)) & test::MacFlag::hidden) != 0;
}

}  // namespace tarvik::SystemCalls

namespace tarvik::AccessList {

std::vector<Denial> denialsAt(const fs::path& item) {
    const bool coversItem = SystemCalls::attribute(item, test::MacAttribute::denyDelete) == "1";
    const bool coversContents = SystemCalls::attribute(item, test::MacAttribute::denyDeleteInside) == "1";
    if (!coversItem && !coversContents) return {};
    return {{.isForEveryone = true, .coversItem = coversItem, .coversContents = coversContents}};
}

}  // namespace tarvik::AccessList

bool tarvik::AppleDouble::areKeptAt(const fs::path& path) {
    char answer = '0';
    return ::getxattr(path.c_str(), test::MacAttribute::keepsAppleDouble, &answer, 1) == 1 && answer == '1';
}
