#include "MovePlan/MoveDestination.h"

#include "Platform/Files/Files.h"
#include "Platform/Machine/SystemFolders.h"

#include <optional>
#include <string>

namespace tarvik::MoveDestination {

namespace {

/// What stands after `folder` and a slash; nothing when the path is not below the folder.
std::optional<std::string> pathBelow(const fs::path& folder, const fs::path& path) {
    const std::string beginning = folder.native() + "/";
    if (!path.native().starts_with(beginning)) return std::nullopt;
    return path.native().substr(beginning.size());
}

}  // namespace

fs::path dataDestination(const Host& host, const fs::path& source, const fs::path& dataParent) {
    return dataDestination(host, source, dataParent, host.home);
}

fs::path dataDestination(const Host& host, const fs::path& source, const fs::path& dataParent, const fs::path& home) {
    const fs::path path = Files::standardized(source);
    if (const auto relative = pathBelow(Files::standardized(home), path)) return dataParent / *relative;
    if (const auto relative = pathBelow(SystemFolders::library(host), path))
        return dataParent / "System/Library" / *relative;
    return dataParent / path.filename();
}

}  // namespace tarvik::MoveDestination
