#include "Packages/FlatPackage.h"

#include "Packages/Distribution.h"
#include "Packages/PackageFailure.h"
#include "Packages/XarArchive.h"

#include <memory>

namespace tarvik::packages::FlatPackage {

namespace {

constexpr std::uint64_t largestDescription = 16'000'000;

std::function<ByteSource()> opener(const std::shared_ptr<const XarArchive>& archive, const std::string& path) {
    const XarEntry* entry = archive->contents().find(path);
    if (!entry) return {};
    return [archive, entry] {
        ByteSource source = archive->source(*entry);
        return ByteSource([archive, source] { return source(); });
    };
}

/// The component whose files lie in `folder` of the archive, "" or "Editor.pkg/".
Component componentIn(const std::shared_ptr<const XarArchive>& archive, const std::string& folder) {
    const XarEntry* info = archive->contents().find(folder + "PackageInfo");
    if (!info) failDamaged("The package lacks the part " + folder + "PackageInfo.");
    Component component = componentOfPackageInfo(archive->bytes(*info, largestDescription));
    component.payload = opener(archive, folder + "Payload");
    component.scripts = opener(archive, folder + "Scripts");
    return component;
}

Product productOf(const std::shared_ptr<const XarArchive>& archive, const std::string& name) {
    Product product{name, {}};
    const XarEntry* description = archive->contents().find("Distribution");
    if (!description) {
        product.components.push_back(componentIn(archive, ""));
        product.components.back().name = name;
        return product;
    }
    const Distribution distribution = Distribution::parsed(archive->bytes(*description, largestDescription));
    if (!distribution.title.empty()) product.name = distribution.title;
    for (const auto& package : distribution.packages) {
        if (!package.reference.starts_with('#'))
            failDamaged("The product names a package that is not in it: " + package.reference);
        const std::string folder = package.reference.substr(1);
        product.components.push_back(componentIn(archive, folder + "/"));
        product.components.back().name = fs::path(folder).stem().native();
    }
    return product;
}

}  // namespace

Product open(const fs::path& package) {
    return productOf(std::make_shared<const XarArchive>(XarArchive::open(package)), package.stem().native());
}

}  // namespace tarvik::packages::FlatPackage
