#include "Applications/ExternalTarget.h"

#include "Platform/Files/Files.h"

namespace tarvik {

std::optional<fs::path> ExternalTarget::of(const AppRecord& app) {
    if (!app.externalTargetPath || app.externalTargetPath->empty() || *app.externalTargetPath == app.bundlePath)
        return std::nullopt;
    if (app.externalTargetPath->is_absolute()) return Files::standardized(*app.externalTargetPath);
    if (!app.isSymlink || !app.bundlePath.is_absolute()) return std::nullopt;
    return Files::standardized(app.bundlePath.parent_path() / *app.externalTargetPath);
}

}  // namespace tarvik
