#include "Installers/Opening/ZipFolder.h"

#include "Copying/ItemLock.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Basics/Identifier.h"
#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"

#include <cerrno>
#include <cstddef>
#include <string>

namespace tarvik {

namespace {

constexpr std::string_view zipFolderPrefix = "TarvikZip-";
constexpr std::size_t uuidLength = 36;

}  // namespace

ZipFolder ZipFolder::make(const Host& host) {
    constexpr int mostAttempts = 5;
    ZipFolder folder;
    Files::createFolder(host.temporary);
    for (int attempt = 1;; ++attempt) {
        folder.path = host.temporary / (std::string(zipFolderPrefix) + newIdentifier());
        if (!Files::claim(folder.path)) throw FileError("create the folder", folder.path, EEXIST);
        folder.handle = ItemLock::hold(folder.path);
        // Another start may have cleared it away before it was locked. Where nothing can be locked, nothing is cleared.
        if (ItemLock::isHeldAt(folder.path, folder.handle) || attempt == mostAttempts) return folder;
        ignoringFailure([&] { Files::removeItem(folder.path); });
    }
}

bool ZipFolder::isName(std::string_view name) {
    return name.starts_with(zipFolderPrefix) && name.size() == zipFolderPrefix.size() + uuidLength;
}

}  // namespace tarvik
