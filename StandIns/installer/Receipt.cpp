#include "installer/Receipt.h"

#include "Platform/Text/PropertyList.h"

#include <algorithm>
#include <chrono>

namespace tarvik::installer::Receipt {

namespace {

using packages::BoundedTree;
using packages::ByteSource;
using packages::SafeName::Components;

Components placeOf(const std::string& name) {
    return {"private", "var", "db", "receipts", name};
}

void writeText(BoundedTree& tree, const std::string& name, const std::string& text) {
    bool isGiven = false;
    tree.makeFile(placeOf(name), {.mode = 0644}, [&]() -> std::string_view {
        if (isGiven) return {};
        isGiven = true;
        return text;
    });
}

}  // namespace

bool exists(BoundedTree& tree, const std::string& identifier) {
    return tree.exists(placeOf(identifier + ".plist"));
}

void write(BoundedTree& tree, const packages::Component& component, const std::string& fileName,
           std::vector<std::string> paths) {
    std::sort(paths.begin(), paths.end());
    paths.erase(std::unique(paths.begin(), paths.end()), paths.end());
    std::string bill = ".\n";
    // A name with a line break would make two lines of one path.
    for (const std::string& path : paths)
        if (path.find('\n') == std::string::npos) bill += "./" + path + "\n";
    const PropertyList list = PropertyList::Dictionary{
        {"InstallDate", std::chrono::time_point_cast<PropertyList::Date::duration>(
                            std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now()))},
        {"InstallPrefixPath", packages::SafeName::joined(component.place)},
        {"InstallProcessName", "installer"},
        {"PackageFileName", fileName},
        {"PackageIdentifier", component.identifier},
        {"PackageVersion", component.version}};
    writeText(tree, component.identifier + ".bom", bill);
    writeText(tree, component.identifier + ".plist", list.xml());
}

}  // namespace tarvik::installer::Receipt
