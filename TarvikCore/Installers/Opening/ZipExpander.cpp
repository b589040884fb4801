#include "Installers/Opening/ZipExpander.h"

#include "Copying/FileStash.h"
#include "Installers/Opening/OpenedLeftovers.h"
#include "Installers/Opening/ZipCheck.h"
#include "Installers/Opening/ZipFolder.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/TreeWalk.h"
#include "Platform/Processes/CommandRunner.h"
#include "Platform/Storage/VolumeCapacityProbe.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdint>
#include <utility>

namespace tarvik::ZipExpander {

namespace {

constexpr const char* domain = "zip";
constexpr int unsafePaths = 1;

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

/// Nothing of an archive that would do harm is ever unpacked.
void refuseHarm(const Host& host, const fs::path& archive) {
    const ZipCheck check = ZipCheck::of(archive);
    if (check.isUnsafe) refuseAsUnsafe();
    Files::createFolder(host.temporary);
    const std::int64_t free = VolumeCapacityProbe::freeBytes(host, host.temporary);
    if (free > 0 && check.unpackedSize > free)
        throw Failure(domain, ENOSPC,
                      fmt::format("Not enough space to expand the archive. Need {}, have {}.",
                                  Text::byteCount(check.unpackedSize), Text::byteCount(free)));
}

}  // namespace

fs::path expand(const Host& host, const fs::path& archive, OpenedHold& hold) {
    OpenedLeftovers::sweep(host);
    refuseHarm(host, archive);
    ZipFolder folder = ZipFolder::make(host);
    // The tool writes nothing to its standard output. That it has the folder open there keeps the folder locked, should
    // this process be killed, until the tool has ended too.
    const auto result = CommandRunner::runWritingTo(folder.handle, host.tools.ditto,
                                                    {"-x", "-k", archive.native(), folder.path.native()});
    if (!result.succeeded()) {
        FileStash::moveAside(host, folder.path, "zip-failed");
        throw Failure(domain, result.status, result.stderr);
    }
    if (containsUnsafePath(folder.path)) {
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
