#include "Health/DanglingDataLinkDetector.h"

#include "Launchers/StaleRootRetarget.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/TreeWalk.h"
#include "Platform/Machine/SilentVolumes.h"

#include <fmt/format.h>

#include <array>
#include <string_view>

namespace tarvik::DanglingDataLinkDetector {

namespace {

constexpr std::array roots = {"Library/Application Support", "Library/Logs", "Library/HTTPStorages", "Library/WebKit",
                              "Library/Saved Application State"};
/// Of the entries that are looked at; a root's own are at 0.
constexpr int deepest = 2;

/// A link that names a process and was never meant to lead anywhere.
bool isMarkOfAProcess(std::string_view name) {
    return name.starts_with("Singleton") || name.starts_with("RunningChromeVersion");
}

std::string detailOf(const std::optional<fs::path>& relocated) {
    if (!relocated)
        return "App-data symlink target is missing. No relocated copy found; the app may crash at launch until "
               "re-linked.";
    return fmt::format("App-data symlink target is missing. Relocated copy found at {}; `health repair` repoints it.",
                       relocated->native());
}

void judge(const Host& host, const fs::path& link, std::vector<HealthIssue>& issues) {
    const auto text = Files::linkText(link);
    if (!text) return;
    const fs::path target = link.parent_path() / *text;
    if (!SilentVolumes::hold(host, target) && !Files::isMissing(target)) return;
    issues.push_back({.kind = HealthIssue::Kind::dangling,
                      .location = link,
                      .target = target,
                      .detail = detailOf(StaleRootRetarget::candidate(host, target))});
}

}  // namespace

std::vector<HealthIssue> detect(const Host& host, const Cancellation& cancellation) {
    std::vector<HealthIssue> issues;
    for (const char* name : roots) {
        const fs::path root = host.home / name;
        if (SilentVolumes::hold(host, root)) continue;
        // A data folder that was moved as a whole is looked at where it is.
        TreeWalk walk(Files::resolved(root).value_or(root), {.skipsHidden = true});
        while (!cancellation.isCancelled() && walk.next()) {
            if (walk.event() != TreeWalk::Event::item) continue;
            if (walk.depth() == deepest && walk.type() == Files::ItemType::folder) walk.skipContents();
            if (walk.type() == Files::ItemType::symbolicLink && !isMarkOfAProcess(walk.name()))
                judge(host, root / walk.relativePath(), issues);
        }
    }
    return issues;
}

}  // namespace tarvik::DanglingDataLinkDetector
