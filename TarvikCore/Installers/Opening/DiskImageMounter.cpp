#include "Installers/Opening/DiskImageMounter.h"

#include "Platform/Basics/Failure.h"
#include "Platform/Processes/CommandRunner.h"
#include "Platform/Text/PropertyList.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

namespace tarvik::DiskImageMounter {

namespace {

constexpr const char* domain = "hdiutil";
constexpr int unreadableAnswer = 1;

/// What the tool says of the entities of an attached image, hdiutil(1). Another shape is no failure: it names nothing.
void readEntities(const PropertyList& answer, DiskImageMount& mount) {
    const PropertyList* found = answer.find("system-entities");
    const auto* entities = found ? found->as<PropertyList::List>() : nullptr;
    if (!entities) return;
    for (const PropertyList& entity : *entities) {
        if (const auto point = entity.text("mount-point"); point && !point->empty())
            mount.mountPoints.emplace_back(*point);
        if (auto device = entity.text("dev-entry")) mount.devicePaths.push_back(std::move(*device));
    }
}

}  // namespace

DiskImageMount attach(const Host& host, const fs::path& image) {
    const auto result =
        CommandRunner::run(host.tools.hdiutil, {"attach", image.native(), "-plist", "-nobrowse", "-readonly"});
    if (!result.succeeded()) throw Failure(domain, result.status, result.stderr);
    const auto answer = PropertyList::parsed(result.stdout);
    if (!answer) throw Failure(domain, unreadableAnswer, "The answer of hdiutil could not be read.");
    DiskImageMount mount{image, {}, {}};
    readEntities(*answer, mount);
    return mount;
}

void detach(const Host& host, const DiskImageMount& mount) {
    std::vector<std::string> targets;
    for (const fs::path& point : mount.mountPoints) targets.push_back(point.native());
    targets.insert(targets.end(), mount.devicePaths.begin(), mount.devicePaths.end());
    std::any_of(targets.begin(), targets.end(), [&](const std::string& target) {
        return CommandRunner::run(host.tools.hdiutil, {"detach", target, "-quiet"}).succeeded();
    });
}

}  // namespace tarvik::DiskImageMounter
