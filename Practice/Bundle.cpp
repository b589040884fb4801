#include "Practice/Bundle.h"

#include "Platform/Text/PropertyList.h"

#include <fmt/format.h>

namespace tarvik::Practice {

namespace {

PropertyList description(const Bundle& bundle, const std::string& name, const std::string& executable) {
    PropertyList::Dictionary list = {
        {"CFBundleExecutable", executable},
        {"CFBundleName", bundle.displayName.empty() ? name : bundle.displayName},
        {"CFBundlePackageType", "APPL"},
        {"CFBundleShortVersionString", bundle.version},
    };
    if (!bundle.identifier.empty()) list["CFBundleIdentifier"] = bundle.identifier;
    if (!bundle.copyright.empty()) list["NSHumanReadableCopyright"] = bundle.copyright;
    return list;
}

void writeDescription(TreeWriter& writer, const fs::path& file, const PropertyList& list, Bundle::Form form) {
    switch (form) {
        case Bundle::Form::xml:
            return writer.file(file, list.xml());
        case Bundle::Form::binary:
            return writer.file(file, list.binary());
        case Bundle::Form::broken:
            return writer.file(file, list.xml().substr(0, 200));
        case Bundle::Form::none:
            return;
    }
}

}  // namespace

void write(TreeWriter& writer, const Bundle& bundle) {
    const std::string name = bundle.path.stem();
    const std::string executable = bundle.executable.empty() ? name : bundle.executable;
    const fs::path contents = bundle.path / "Contents";
    writer.folder(contents / "MacOS");
    writeDescription(writer, contents / "Info.plist", description(bundle, name, executable), bundle.form);
    writer.file(contents / "PkgInfo", "APPL????");
    if (!bundle.hasProgram) return;
    writer.file(contents / "MacOS" / executable, fmt::format("#!/bin/sh\necho 'This is {}.'\n", name), 0755);
}

}  // namespace tarvik::Practice
