#include "Platform/Files/AppleDouble.h"

#include "Platform/Files/FileDescriptor.h"
#include "Platform/Files/TreeWalk.h"

#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace tarvik::AppleDouble {

namespace {

constexpr std::string_view mark = "._";
// The magic number 0x00051607 and version 2, in big-endian order.
constexpr std::string_view header("\x00\x05\x16\x07\x00\x02\x00\x00", 8);

}  // namespace

std::optional<std::string_view> ownerName(std::string_view name) {
    if (!name.starts_with(mark)) return std::nullopt;
    const std::string_view owner = name.substr(mark.size());
    if (owner.empty() || owner == "." || owner == "..") return std::nullopt;
    return owner;
}

bool isHeader(std::string_view bytes) {
    return bytes.starts_with(header);
}

bool belongsToItem(int folderHandle, const char* name) {
    const auto owner = ownerName(name);
    if (!owner) return false;
    struct stat status {};
    if (::fstatat(folderHandle, std::string(*owner).c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return false;
    const FileDescriptor file(::openat(folderHandle, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    char bytes[header.size()];
    return file && ::fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode) &&
           ::read(file.get(), bytes, sizeof bytes) == static_cast<ssize_t>(sizeof bytes) &&
           isHeader({bytes, sizeof bytes});
}

std::int64_t countIn(const fs::path& folder) {
    std::int64_t count = 0;
    TreeWalk walk(folder, {.order = TreeWalk::Order::any});
    while (walk.next())
        if (walk.event() == TreeWalk::Event::item && belongsToItem(walk.folderHandle(), walk.name())) ++count;
    return count;
}

}  // namespace tarvik::AppleDouble
