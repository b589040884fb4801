#include "UninstallRun/UninstallRunWorld.h"

#include "Platform/Files/Files.h"
#include "Support/Bundles.h"
#include "Support/Tree.h"
#include "UninstallRun/AppUninstallRunner.h"

#include <atomic>
#include <chrono>

namespace tarvik::test {

UninstallRunWorld::UninstallRunWorld() : UninstallRunWorld(fs::path()) {}

UninstallRunWorld::UninstallRunWorld(const fs::path& drivePath) : World(drivePath) {
    host.trash = makeRootedTrashCan(home);
    // A clock that stands still would never come to the next second.
    host.now = [looks = std::make_shared<std::atomic<int>>(0)] {
        return std::chrono::system_clock::time_point(std::chrono::seconds(madeNow) +
                                                     std::chrono::milliseconds(50) * (*looks)++);
    };
    makeBundle(bundle, {{"CFBundleIdentifier", "org.example.Foo"}});
    plan = planWith({});
}

UninstallCandidate UninstallRunWorld::candidate(const fs::path& path) const {
    const std::string label = path.parent_path().filename();
    for (const UninstallCategory category : allUninstallCategories())
        if (labelOf(category) == label) return candidate(path, category);
    return candidate(path, UninstallCategory::applicationSupport);
}

UninstallCandidate UninstallRunWorld::candidate(const fs::path& path, UninstallCategory category) const {
    return {.path = path,
            .category = category,
            .sizeBytes = 7,
            .defaultSelected = true,
            .isSymlink = Files::isSymbolicLink(path),
            .seen = Files::info(path)};
}

AppUninstallPlan UninstallRunWorld::planWith(const std::vector<fs::path>& data) const {
    AppUninstallPlan made;
    made.app.id = bundle.native();
    made.app.bundlePath = bundle;
    made.app.displayName = "Foo";
    made.app.bundleIdentifier = "org.example.Foo";
    made.app.isSymlink = Files::isSymbolicLink(bundle);
    made.candidates.push_back(candidate(bundle, UninstallCategory::executable));
    for (const fs::path& path : data) made.candidates.push_back(candidate(path));
    return made;
}

void UninstallRunWorld::addData(const fs::path& path, const std::string& text) {
    makeFile(path, text);
    plan.candidates.push_back(candidate(path));
}

AppUninstallReporter UninstallRunWorld::reporter() {
    return {[this](const std::string& line) { lines.push_back(line); }};
}

AppUninstallSession UninstallRunWorld::run(bool dryRun, const std::optional<std::set<std::string>>& selectedPaths) {
    return AppUninstallRunner::run(host, plan, UninstallSelection::everything, dryRun, selectedPaths, reporter());
}

std::vector<std::string> UninstallRunWorld::journals() const {
    return Files::names(sessions() / ".journals");
}

void UninstallRunWorld::refuseAllTrash() {
    trash->refuses = true;
    host.trash = trash;
}

}  // namespace tarvik::test
