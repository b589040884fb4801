#include "Installers/Install/InstallWorld.h"

#include "Discovery/AppScanner.h"
#include "Platform/Basics/Failure.h"
#include "Support/Bundles.h"
#include "Support/Tree.h"

#include <fmt/format.h>

namespace tarvik::test {

InstallWorld::InstallWorld() {
    setUp();
}

InstallWorld::InstallWorld(const fs::path& drivePath) : World(drivePath) {
    setUp();
}

void InstallWorld::setUp() {
    host.tools.externalAppLauncher = folder / "external-app-launcher";
    makeFile(host.tools.externalAppLauncher, "the program");
    makeFolder(folder / "Applications");
    option.id = "test";
    option.externalRootName = "ExternalTarvik";
    option.applicationLinkRoot = "/Applications";
}

InstallTerms InstallWorld::terms() const {
    return {.option = option,
            .drive = TargetDrive(host, drive),
            .useRootferry = useRootferry,
            .reporter = {[kept = lines](const std::string& line) { kept->push_back(line); }},
            .cancellation = cancellation};
}

fs::path InstallWorld::makeApp(const fs::path& app, const std::string& content) const {
    makeBundle(app, {{"CFBundleIdentifier", "org.example.app"}});
    makeFile(app / "Contents/Resources/data", content);
    makeLink(app / "Contents/Resources/current", "data");
    return app;
}

bool InstallWorld::isLauncherGood(const std::string& name) const {
    return AppScanner::launcherShimTarget(launcher(name)) == onDrive(name);
}

std::string InstallWorld::outcomeOf(const std::function<void()>& act) {
    lines->clear();
    try {
        act();
        return "done";
    } catch (const Failure& failure) {
        return fmt::format("{} {}: {}", failure.domain(), failure.code(), failure.description());
    }
}

}  // namespace tarvik::test
