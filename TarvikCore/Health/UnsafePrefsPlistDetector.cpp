#include "Health/UnsafePrefsPlistDetector.h"

#include "Platform/Files/Files.h"
#include "Platform/Machine/SilentVolumes.h"
#include "Platform/Machine/SystemFolders.h"

#include <string>

namespace tarvik::UnsafePrefsPlistDetector {

std::vector<fs::path> scanRoots(const Host& host, const std::vector<fs::path>& extraHomes) {
    std::vector<fs::path> roots = {SystemFolders::library(host) / "Preferences", host.home / "Library/Preferences"};
    for (const fs::path& home : extraHomes) roots.push_back(home / "Library/Preferences");
    std::erase_if(roots, [&](const fs::path& root) { return SilentVolumes::hold(host, root) || !Files::exists(root); });
    return roots;
}

std::vector<HealthIssue> detect(const Host& host, const std::vector<fs::path>& extraHomes) {
    std::vector<HealthIssue> issues;
    for (const fs::path& root : scanRoots(host, extraHomes)) {
        for (const std::string& name : Files::names(root)) {
            const fs::path file = root / name;
            if (file.extension() != ".plist" || !Files::isSymbolicLink(file)) continue;
            issues.push_back({.kind = HealthIssue::Kind::unsafePrefsPlist,
                              .location = file,
                              .target = Files::linkText(file),
                              .detail = "Library/Preferences plist is a symlink; cfprefsd will break it on next "
                                        "write."});
        }
    }
    return issues;
}

}  // namespace tarvik::UnsafePrefsPlistDetector
