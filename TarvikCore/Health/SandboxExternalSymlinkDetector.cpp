#include "Health/SandboxExternalSymlinkDetector.h"

#include "Health/StashedLink.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/ListedFolder.h"
#include "Platform/Machine/SilentVolumes.h"
#include "Platform/Machine/SystemFolders.h"

#include <array>
#include <cstddef>

namespace tarvik::SandboxExternalSymlinkDetector {

namespace {

constexpr std::array roots = {"Library/Containers", "Library/Group Containers", "Library/Application Scripts"};

}  // namespace

std::vector<HealthIssue> detect(const Host& host) {
    const std::string volumes = SystemFolders::volumes(host).native() + "/";
    std::vector<HealthIssue> issues;
    for (const char* name : roots) {
        const fs::path root = host.home / name;
        if (SilentVolumes::hold(host, root)) continue;
        const auto folder = ListedFolder::at(root);
        for (std::size_t index = 0; folder && index < folder->size(); ++index) {
            if (folder->type(index) != Files::ItemType::symbolicLink) continue;
            const fs::path link = root / folder->name(index);
            const auto text = Files::linkText(link);
            if (!text || !text->native().starts_with(volumes) || StashedLink::isOne(folder->name(index))) continue;
            issues.push_back({.kind = HealthIssue::Kind::sandboxExternalSymlink,
                              .location = link,
                              .target = *text,
                              .detail = "Sandbox-managed path symlinked to external volume. macOS sandbox blocks reads "
                                        "from /Volumes/, breaking sandboxed apps. Restore to internal disk."});
        }
    }
    return issues;
}

}  // namespace tarvik::SandboxExternalSymlinkDetector
