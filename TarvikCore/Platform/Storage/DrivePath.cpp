#include "Platform/Storage/DrivePath.h"

#include "Platform/Files/Files.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Platform/Machine/SystemFolders.h"
#include "Platform/Machine/VolumeList.h"

#include <algorithm>

namespace tarvik::DrivePath {

std::optional<fs::path> of(const Host& host, const fs::path& item) {
    if (!item.is_absolute()) return std::nullopt;
    const fs::path volumes = SystemFolders::volumes(host);
    if (Files::isAtOrBelow(item, volumes)) {
        const fs::path name = *item.lexically_relative(volumes).begin();
        if (name.empty() || name == ".") return std::nullopt;
        return volumes / name;
    }
    fs::path before;
    for (const fs::path& component : item) {
        if (component == AppStorageNames::externalRoot && before.has_filename()) return before;
        before /= component;
    }
    return std::nullopt;
}

std::optional<fs::path> absent(const Host& host, const fs::path& item) {
    const auto drive = of(host, item);
    if (!drive || Files::isSymbolicLink(*drive)) return std::nullopt;  // A Mac has a link to its own disk there.
    const auto mounted = host.volumes->mountPaths();
    return std::find(mounted.begin(), mounted.end(), *drive) == mounted.end() ? drive : std::nullopt;
}

}  // namespace tarvik::DrivePath
