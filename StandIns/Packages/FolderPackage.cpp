#include "Packages/FolderPackage.h"

#include "Packages/Distribution.h"
#include "Packages/FlatPackage.h"
#include "Packages/PackageFailure.h"
#include "Platform/Files/FileDescriptor.h"
#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"
#include "Platform/Text/PropertyList.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace tarvik::packages::FolderPackage {

namespace {

constexpr std::int64_t largestDescriptionFile = 16'000'000;
constexpr std::size_t mostPackages = 1000;

/// A file of the package, of which no step is a link that leads out of it.
std::optional<fs::path> inside(const fs::path& package, const fs::path& relative) {
    const auto whole = Files::resolved(package);
    auto part = Files::resolved(package / relative);
    if (!whole || !part) return std::nullopt;
    if (!Files::isAtOrBelow(*part, *whole)) failUnsafe("The package reaches outside of itself: " + relative.native());
    return part;
}

ByteSource sourceOfFile(const fs::path& file) {
    struct State {
        FileDescriptor handle;
        std::array<char, 65536> block;
        fs::path file;
    };
    auto state = std::make_shared<State>();
    state->file = file;
    state->handle = FileDescriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!state->handle || ::fstat(state->handle.get(), &status) != 0) throw FileError("open", file, errno);
    if (!S_ISREG(status.st_mode)) failDamaged("The payload is no file.");
    return [state]() -> std::string_view {
        ssize_t got = 0;
        do got = ::read(state->handle.get(), state->block.data(), state->block.size());
        while (got < 0 && errno == EINTR);
        if (got < 0) throw FileError("read", state->file, errno);
        return {state->block.data(), static_cast<std::size_t>(got)};
    };
}

std::vector<std::string> present(const std::optional<fs::path>& folder, std::initializer_list<const char*> names) {
    std::vector<std::string> result;
    if (folder)
        for (const char* name : names)
            if (Files::exists(*folder / name)) result.emplace_back(name);
    return result;
}

Component componentAt(const fs::path& package) {
    const auto list = inside(package, "Contents/Info.plist");
    if (!list) failDamaged("The package does not tell what it is.");
    const PropertyList info = PropertyList::dictionaryAt(*list);
    Component component;
    component.identifier = info.text("CFBundleIdentifier").value_or("");
    if (!isIdentifier(component.identifier)) failDamaged("The package has no identifier that a receipt could bear.");
    component.version = info.text("CFBundleShortVersionString").value_or("0");
    component.name = package.stem().native();
    std::string place = info.text("IFPkgFlagDefaultLocation").value_or("/");
    place.erase(0, place.find_first_not_of('/'));
    const auto components = SafeName::components(place);
    if (!components) failUnsafe("The package would install elsewhere: " + place);
    component.place = *components;
    if (const auto payload = inside(package, "Contents/Archive.pax.gz"))
        component.payload = [file = *payload] { return sourceOfFile(file); };
    component.scriptFolder = inside(package, "Contents/Resources");
    component.before = present(component.scriptFolder, {"preflight", "preinstall"});
    component.after = present(component.scriptFolder, {"postinstall", "postflight"});
    component.beforeUpgrade = present(component.scriptFolder, {"preflight", "preupgrade"});
    component.afterUpgrade = present(component.scriptFolder, {"postupgrade", "postflight"});
    return component;
}

/// The packages in a meta package; only those that are folders and no meta packages themselves, so that none can hold
/// itself.
Component packageIn(const fs::path& whole, const fs::path& relative) {
    const auto components = SafeName::components(relative.native());
    if (!components) failUnsafe("The product names a package that lies elsewhere: " + relative.native());
    const auto package = inside(whole, SafeName::joined(*components));
    if (!package) failDamaged("The product lacks the package " + relative.native() + ".");
    if (Files::isFolder(*package)) return componentAt(*package);
    Product flat = FlatPackage::open(*package);
    if (flat.components.size() != 1) failDamaged("The product holds another product: " + relative.native());
    return std::move(flat.components.front());
}

Product ofDistribution(const fs::path& package, const fs::path& file, const std::string& name) {
    const Distribution distribution = Distribution::parsed(Files::read(file, largestDescriptionFile));
    Product product{distribution.title.empty() ? name : distribution.title, {}};
    for (const auto& each : distribution.packages) {
        std::string path = each.reference;
        for (const std::string_view scheme : {"#", "file:"})
            if (path.starts_with(scheme)) path.erase(0, scheme.size());
        product.components.push_back(packageIn(package, path));
    }
    return product;
}

}  // namespace

Product open(const fs::path& package) {
    const std::string name = package.stem().native();
    if (const auto file = inside(package, "Contents/distribution.dist")) return ofDistribution(package, *file, name);
    const auto list = inside(package, "Contents/Info.plist");
    const PropertyList info = list ? PropertyList::dictionaryAt(*list) : PropertyList();
    const PropertyList* packages = info.find("IFPkgFlagPackageList");
    const auto* entries = packages ? packages->as<PropertyList::List>() : nullptr;
    if (!entries) return {name, {componentAt(package)}};
    if (entries->size() > mostPackages) failTooLarge("The product holds too many packages.");
    Product product{name, {}};
    const fs::path folder = info.text("IFPkgFlagComponentDirectory").value_or("Contents/Packages");
    for (const PropertyList& entry : *entries) {
        // "required", "selected" or "unselected".
        if (entry.text("IFPkgFlagPackageSelection") == "unselected") continue;
        product.components.push_back(packageIn(package, folder / entry.text("IFPkgFlagPackageLocation").value_or("")));
    }
    if (product.components.empty()) failDamaged("The product holds no package.");
    return product;
}

}  // namespace tarvik::packages::FolderPackage
