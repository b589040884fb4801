#include "Installers/Opening/DiskImageTool.h"

#include "Platform/Processes/CommandRunner.h"
#include "Platform/Text/PropertyList.h"

#include <algorithm>
#include <utility>

namespace tarvik::DiskImageTool {

bool readAnswer(std::string_view answer, DiskImageMount& mount) {
    const auto list = PropertyList::parsed(answer);
    if (!list) return false;
    const PropertyList* found = list->find("system-entities");
    const auto* entities = found ? found->as<PropertyList::List>() : nullptr;
    if (!entities) return true;
    for (const PropertyList& entity : *entities) {
        if (const auto point = entity.text("mount-point"); point && !point->empty())
            mount.mountPoints.emplace_back(*point);
        if (auto device = entity.text("dev-entry")) mount.devicePaths.push_back(std::move(*device));
    }
    return true;
}

bool detachOne(const Host& host, const DiskImageMount& mount) {
    std::vector<std::string> targets;
    for (const fs::path& point : mount.mountPoints) targets.push_back(point.native());
    targets.insert(targets.end(), mount.devicePaths.begin(), mount.devicePaths.end());
    return std::any_of(targets.begin(), targets.end(), [&](const std::string& target) {
        return CommandRunner::run(host.tools.hdiutil, {"detach", target, "-quiet"}).succeeded();
    });
}

}  // namespace tarvik::DiskImageTool
