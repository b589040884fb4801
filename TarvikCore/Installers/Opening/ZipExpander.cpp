#include "Installers/Opening/ZipExpander.h"

#include "Copying/FileStash.h"
#include "Installers/Opening/ZipCheck.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Basics/Identifier.h"
#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/TreeWalk.h"
#include "Platform/Processes/CommandRunner.h"
#include "Platform/Storage/VolumeCapacityProbe.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdint>
#include <string>

namespace tarvik::ZipExpander {

namespace {

constexpr const char* domain = "zip";
constexpr int unsafePaths = 1;

fs::path makeFolder(const Host& host) {
    fs::path folder = host.temporary / ("TarvikZip-" + newIdentifier());
    if (!Files::claim(folder)) throw FileError("create the folder", folder, EEXIST);
    return folder;
}

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
    const std::int64_t free = VolumeCapacityProbe::freeBytes(host, host.temporary);
    if (free > 0 && check.unpackedSize > free)
        throw Failure(domain, ENOSPC,
                      fmt::format("Not enough space to expand the archive. Need {}, have {}.",
                                  Text::byteCount(check.unpackedSize), Text::byteCount(free)));
}

}  // namespace

fs::path expand(const Host& host, const fs::path& archive) {
    Files::createFolder(host.temporary);
    refuseHarm(host, archive);
    const fs::path folder = makeFolder(host);
    const auto result = CommandRunner::run(host.tools.ditto, {"-x", "-k", archive.native(), folder.native()});
    if (!result.succeeded()) {
        FileStash::moveAside(host, folder, "zip-failed");
        throw Failure(domain, result.status, result.stderr);
    }
    if (containsUnsafePath(folder)) {
        FileStash::moveAside(host, folder, "zip-unsafe");
        refuseAsUnsafe();
    }
    return folder;
}

}  // namespace tarvik::ZipExpander
