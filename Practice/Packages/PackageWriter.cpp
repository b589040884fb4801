#include "Practice/Packages/PackageWriter.h"

namespace tarvik::Practice::PackageWriter {

namespace {

constexpr const char* xmlHead = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n";

void addParts(XarWriter& archive, const Component& component, const std::string& folder) {
    archive.addFile(folder + "PackageInfo", packageInfo(component));
    // Payloads are packed already.
    archive.addFile(folder + "Payload", packed(component.payload.bytes(), component.compression), Compression::none);
    if (component.scripts.empty()) return;
    CpioWriter scripts;
    scripts.addFolder(".");
    constexpr mode_t executable = 0755;
    for (const auto& [name, text] : component.scripts) scripts.addFile("./" + name, text, executable);
    archive.addFile(folder + "Scripts", packed(scripts.bytes(), Compression::gzip), Compression::none);
}

}  // namespace

std::string packageInfo(const Component& component) {
    std::string scripts;
    for (const char* name : {"preinstall", "postinstall"})
        if (component.scripts.contains(name)) scripts += "    <" + std::string(name) + " file=\"./" + name + "\"/>\n";
    return xmlHead +
           ("<pkg-info format-version=\"2\" identifier=\"" + component.identifier + "\" version=\"" +
            component.version + "\" install-location=\"" + component.place + "\" auth=\"root\">\n") +
           "  <payload/>\n" + (scripts.empty() ? "" : "  <scripts>\n" + scripts + "  </scripts>\n") + "</pkg-info>\n";
}

XarWriter component(const Component& component) {
    XarWriter archive;
    addParts(archive, component, "");
    return archive;
}

XarWriter product(const std::string& title, const std::vector<Component>& components) {
    std::string lines;
    std::string choices;
    std::string references;
    for (const Component& each : components) {
        lines += "    <line choice=\"" + each.identifier + "\"/>\n";
        choices += "  <choice id=\"" + each.identifier + "\"><pkg-ref id=\"" + each.identifier + "\"/></choice>\n";
        references += "  <pkg-ref id=\"" + each.identifier + "\" version=\"" + each.version + "\">#" + each.identifier +
                      ".pkg</pkg-ref>\n";
    }
    XarWriter archive;
    archive.addFile("Distribution", xmlHead + ("<installer-gui-script minSpecVersion=\"1\">\n  <title>" + title) +
                                        "</title>\n  <choices-outline>\n" + lines + "  </choices-outline>\n" + choices +
                                        references + "</installer-gui-script>\n");
    for (const Component& each : components) addParts(archive, each, each.identifier + ".pkg/");
    return archive;
}

}  // namespace tarvik::Practice::PackageWriter
