#include "Health/HealthWorld.h"

#include "Records/HealthManifest.h"
#include "Support/Bundles.h"
#include "Support/Tree.h"

namespace tarvik::test {

HealthWorld::HealthWorld() {
    makeFolder(applications);
    makeFolder(appsOnDrive);
}

fs::path HealthWorld::moveApp(const std::string& name, const std::string& identifier) const {
    PropertyList::Dictionary info;
    if (!identifier.empty()) info.emplace("CFBundleIdentifier", identifier);
    makeBundle(appsOnDrive / name, info);
    makeLink(applications / name, appsOnDrive / name);
    return applications / name;
}

void HealthWorld::remember(const fs::path& source, const fs::path& destination) const {
    HealthManifest::record(host, {.sourcePath = source, .destinationPath = destination, .movedAt = host.now()});
}

void HealthWorld::signAll(const std::string& verify) {
    const std::string answer = verify.empty() ? "exit 0" : "echo '" + verify + "' >&2; exit 1";
    host.tools.codesign = tool("codesign", "case $1 in --verify) " + answer + ";; esac");
    host.tools.xcrun = tool("xcrun", "echo 'does not have a ticket'; exit 65");
}

std::vector<std::string> kindsAndNames(const std::vector<HealthIssue>& issues) {
    std::vector<std::string> texts;
    texts.reserve(issues.size());
    for (const HealthIssue& issue : issues)
        texts.push_back(std::string(HealthIssueKind::rawValue(issue.kind)) + " " + issue.location.filename().native());
    return texts;
}

}  // namespace tarvik::test
