#include "Installers/Opening/ZipExpander.h"

#include "Copying/FileStash.h"
#include "Installers/Opening/OpenedLeftovers.h"
#include "Installers/Opening/ZipCheck.h"
#include "Installers/Opening/ZipFolder.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/SystemCalls.h"
#include "Platform/Files/TreeWalk.h"
#include "Platform/Processes/CommandRunner.h"
#include "Platform/Storage/VolumeCapacityProbe.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdint>
#include <ctime>
#include <string>
#include <sys/stat.h>
#include <utility>

namespace tarvik::ZipExpander {

namespace {

constexpr const char* domain = "zip";
constexpr int unsafePaths = 1;

/// What differs when another file has come to stand in a file's place, or something was written into it. All 0 for what
/// cannot be looked at.
struct FileState {
    explicit FileState(const fs::path& path) {
        struct stat status {};
        if (::stat(path.c_str(), &status) != 0) return;
        device = static_cast<std::uint64_t>(status.st_dev);
        inode = static_cast<std::uint64_t>(status.st_ino);
        size = static_cast<std::int64_t>(status.st_size);
        const timespec changed = SystemCalls::statusChangeTime(status);
        seconds = static_cast<std::int64_t>(changed.tv_sec);
        nanoseconds = static_cast<std::int64_t>(changed.tv_nsec);
    }
    bool operator==(const FileState&) const = default;

    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t size = 0;
    std::int64_t seconds = 0;
    std::int64_t nanoseconds = 0;
};

/// Whether something below the folder does not lie below it by its path. It is asked of the names alone.
bool containsUnsafePath(const fs::path& root) {
    const fs::path standardizedRoot = Files::standardized(root);
    TreeWalk walk(root, {.order = TreeWalk::Order::any});
    while (walk.next()) {
        if (walk.event() != TreeWalk::Event::item) continue;
        const fs::path item = Files::standardized(root / walk.relativePath());
        if (item == standardizedRoot || !Files::isAtOrBelow(item, standardizedRoot)) return true;
    }
    return false;
}

[[noreturn]] void refuseAsUnsafe() {
    throw Failure(domain, unsafePaths, "Archive contains unsafe paths.");
}

/// Both in bytes where they round alike: that something needs 4 GB and has 4 GB is no reason.
std::string lackOfSpace(std::int64_t needed, std::int64_t free) {
    std::string need = Text::byteCount(needed);
    std::string have = Text::byteCount(free);
    if (need == have) {
        need = Text::counted(needed, "byte");
        have = Text::counted(free, "byte");
    }
    return fmt::format("Not enough space to expand the archive. Need {}, have {}.", need, have);
}

/// Nothing of an archive that would do harm is ever unpacked.
void refuseHarm(const Host& host, const fs::path& archive) {
    const ZipCheck check = ZipCheck::of(archive);
    if (check.isUnsafe) refuseAsUnsafe();
    Files::createFolder(host.temporary);
    const std::int64_t free = VolumeCapacityProbe::freeBytes(host, host.temporary);
    if (free > 0 && check.unpackedSize > free) throw Failure(domain, ENOSPC, lackOfSpace(check.unpackedSize, free));
}

}  // namespace

fs::path expand(const Host& host, const fs::path& archive, OpenedHold& hold) {
    OpenedLeftovers::sweep(host);
    // The tool opens the archive by its path, once more: what it unpacks has to be what was looked at.
    const FileState looked(archive);
    refuseHarm(host, archive);
    if (FileState(archive) != looked) refuseAsUnsafe();
    ZipFolder folder = ZipFolder::make(host);
    // The tool writes nothing to its standard output. That it has the folder open there keeps the folder locked, should
    // this process be killed, until the tool has ended too.
    const auto result = CommandRunner::runWritingTo(folder.handle, host.tools.ditto,
                                                    {"-x", "-k", archive.native(), folder.path.native()});
    if (!result.succeeded()) {
        FileStash::moveAside(host, folder.path, "zip-failed");
        throw Failure(domain, result.status, result.stderr);
    }
    if (FileState(archive) != looked || containsUnsafePath(folder.path)) {
        FileStash::moveAside(host, folder.path, "zip-unsafe");
        refuseAsUnsafe();
    }
    hold = OpenedHold(std::move(folder.handle));
    return folder.path;
}

fs::path expand(const Host& host, const fs::path& archive) {
    OpenedHold hold;
    return expand(host, archive, hold);
}

}  // namespace tarvik::ZipExpander
