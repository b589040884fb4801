#include "hdiutil/Disc.h"

#include "Platform/Basics/Failure.h"
#include "Platform/Files/TreeWalk.h"
#include "hdiutil/ImageFile.h"
#include "hdiutil/TarList.h"
#include "hdiutil/Tool.h"
#include "hdiutil/Volumes.h"

#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace tarvik::hdiutil::Disc {

namespace {

// 7-Zip's program knows discs too, but gives the names of Joliet and no permissions where a disc has Joliet and Rock
// Ridge. bsdtar, a part of the Mac, reads both, and unless it is told to it writes through no link and above no folder.
constexpr const char* program = "/usr/bin/bsdtar";

void runBsdtar(const std::vector<std::string>& arguments, const Tool::Sink& sink) {
    if (Tool::run(program, arguments, sink) != 0) throw Failure("hdiutil", 1, "corrupt image");
}

/// A mounted image gives nobody the rights of others, and has no devices.
void disarm(const fs::path& folder) {
    TreeWalk walk(folder, {.order = TreeWalk::Order::any});
    while (walk.next()) {
        const struct stat* status = walk.status();
        if (status == nullptr || walk.event() != TreeWalk::Event::item) continue;
        const bool isPlain = S_ISREG(status->st_mode) || S_ISDIR(status->st_mode);
        if (!isPlain && !S_ISLNK(status->st_mode)) ::unlinkat(walk.folderHandle(), walk.name(), 0);
        if (isPlain && (status->st_mode & (S_ISUID | S_ISGID | S_ISVTX)) != 0)
            ::fchmodat(walk.folderHandle(), walk.name(), status->st_mode & 0777, 0);
    }
}

std::string trimmed(std::string text) {
    text.resize(text.find('\0') == std::string::npos ? text.size() : text.find('\0'));
    text.resize(text.find_last_not_of(' ') + 1);
    return text;
}

}  // namespace

void open(const fs::path& image, const fs::path& folder) {
    TarList list;
    runBsdtar({"-tvf", image.native()}, [&](std::string_view piece) { list.take(piece); });
    Volumes::requireSpace(folder, list.neededBytes());
    // Permissions as they are, but not the rights of others: without them restored, the mask alone takes from them.
    const mode_t mask = ::umask(0);
    runBsdtar({"-x", "--no-same-permissions", "--no-same-owner", "-f", image.native(), "-C", folder.native()}, {});
    ::umask(mask);
    disarm(folder);
}

std::string name(const fs::path& image) {
    constexpr std::uint64_t firstDescriptor = std::uint64_t{16} * 2048;
    const std::string descriptor = ImageFile(image).bytesAt(firstDescriptor, 2048);
    return descriptor.size() < 72 ? std::string() : trimmed(descriptor.substr(40, 32));
}

}  // namespace tarvik::hdiutil::Disc
