#include "Installers/Inspection/SourceItem.h"

#include "Platform/Files/LastComponent.h"
#include "Platform/Storage/SizingService.h"

namespace tarvik::SourceItem {

InstallableItem of(const Host& host, const fs::path& path, InstallerKind kind) {
    return {.id = path.native(),
            .kind = kind,
            .path = path,
            .label = lastComponent(path),
            .sizeBytes = SizingService::size(host, path)};
}

}  // namespace tarvik::SourceItem
