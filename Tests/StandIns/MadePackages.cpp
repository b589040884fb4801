#include "StandIns/MadePackages.h"

#include "StandIns/StandInRun.h"
#include "Support/EnvironmentVariable.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

namespace tarvik::test {

Practice::PackageWriter::Component editorComponent() {
    Practice::PackageWriter::Component component;
    component.payload.addFolder(".");
    component.payload.addFolder("./Applications");
    component.payload.addFolder("./Applications/Editor.app");
    component.payload.addFolder("./Applications/Editor.app/Contents");
    component.payload.addFile("./Applications/Editor.app/Contents/Info.plist", "<plist/>");
    component.payload.addFile("./Applications/Editor.app/Contents/Editor", "#!/bin/sh\n", 0755);
    component.payload.addLink("./Applications/Editor.app/Contents/Current", "Editor");
    return component;
}

fs::path makePackage(const fs::path& path, const Practice::XarWriter& archive) {
    makeFile(path, archive.bytes());
    return path;
}

bool canRunScripts() {
    const TemporaryFolder machine;
    const EnvironmentVariable root("TARVIK_ROOT", machine.path().native());
    return runStandIn("rootferry", {"true"}).status == 0;
}

}  // namespace tarvik::test
