#include "Packages/Component.h"

#include "Packages/PackageFailure.h"
#include "Packages/Xml.h"

#include <algorithm>
#include <utility>

namespace tarvik::packages {

namespace {

/// A script is one file beside the others: "./preinstall".
std::string scriptNameOf(const Xml::Element& script) {
    const auto components = SafeName::components(script.attribute("file").value_or(""));
    if (!components || components->empty()) failUnsafe("The package names a script that lies elsewhere.");
    return SafeName::joined(*components);
}

SafeName::Components placeOf(std::string_view text) {
    while (text.starts_with('/')) text.remove_prefix(1);
    const auto place = SafeName::components(text);
    if (!place) failUnsafe("The package would install elsewhere: " + std::string(text));
    return *place;
}

}  // namespace

bool isIdentifier(const std::string& text) {
    constexpr std::size_t longest = 200;
    return !text.empty() && text.size() <= longest && !text.starts_with('.') &&
           std::none_of(text.begin(), text.end(),
                        [](char letter) { return letter == '/' || static_cast<unsigned char>(letter) < ' '; });
}

Component componentOfPackageInfo(std::string_view xml) {
    const Xml::Element info = Xml::tree(xml);
    if (info.name != "pkg-info") failDamaged("The package does not tell what it is.");
    Component component;
    component.identifier = info.attribute("identifier").value_or("");
    if (!isIdentifier(component.identifier)) failDamaged("The package has no identifier that a receipt could bear.");
    component.version = info.attribute("version").value_or("0");
    component.name = component.identifier;
    component.place = placeOf(info.attribute("install-location").value_or("/"));
    if (const Xml::Element* scripts = info.child("scripts"))
        for (const Xml::Element& script : scripts->children) {
            if (script.name == "preinstall") component.before.push_back(scriptNameOf(script));
            if (script.name == "postinstall") component.after.push_back(scriptNameOf(script));
        }
    return component;
}

}  // namespace tarvik::packages
