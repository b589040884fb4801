#include "Installers/Opening/OpenedLeftovers.h"

#include "Copying/FileStash.h"
#include "Copying/ItemLock.h"
#include "Installers/Opening/DiskImageNote.h"
#include "Installers/Opening/DiskImageTool.h"
#include "Installers/Opening/ZipFolder.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"

#include <string>
#include <unistd.h>

namespace tarvik::OpenedLeftovers {

namespace {

void clearFolder(const Host& host, const fs::path& folder) {
    if (!Files::isFolder(folder)) return;
    if (const FileDescriptor lock = ItemLock::holdAlone(folder)) FileStash::moveAside(host, folder, "zip-left");
}

/// The note of an image that cannot be detached stays, so that a later start tries again.
void clearImage(const Host& host, const fs::path& note) {
    const FileDescriptor lock = ItemLock::holdAlone(note);
    if (!lock || !ItemLock::isHeldAt(note, lock)) return;
    const auto mount = DiskImageNote::remembered(note);
    if (!mount || DiskImageTool::detachOne(host, *mount)) ::unlink(note.c_str());
}

}  // namespace

void sweep(const Host& host) noexcept {
    ignoringFailure([&] {
        for (const std::string& name : Files::names(host.temporary)) {
            const fs::path item = host.temporary / name;
            if (ZipFolder::isName(name)) ignoringFailure([&] { clearFolder(host, item); });
            if (DiskImageNote::isName(name)) ignoringFailure([&] { clearImage(host, item); });
        }
    });
}

}  // namespace tarvik::OpenedLeftovers
