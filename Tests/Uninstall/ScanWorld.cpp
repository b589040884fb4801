#include "Uninstall/ScanWorld.h"

#include "Platform/Files/Files.h"
#include "Support/Bundles.h"
#include "Support/Tree.h"
#include "Uninstall/RelatedFileScanner.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

namespace tarvik::test {

ScanWorld::ScanWorld() {
    const fs::path bundle = applications / "Editor.app";
    makeBundle(bundle);
    app = {.id = bundle,
           .bundlePath = bundle,
           .displayName = "Editor",
           .bundleIdentifier = "com.acme.editor",
           .executableName = "acmeedit"};
}

void ScanWorld::answerOfPkgutil(const std::string& output, int status) {
    host.tools.pkgutil = tool("pkgutil", fmt::format("printf '%s\\n' \"$@\" >> '{}'\nprintf '{}'\nexit {}",
                                                     (folder / "asked").native(), output, status));
}

std::string ScanWorld::askedOfPkgutil() const {
    return Files::itemExists(folder / "asked") ? contentOf(folder / "asked") : "";
}

std::vector<UninstallCandidate> ScanWorld::scan() const {
    return RelatedFileScanner::scan(host, app);
}

UninstallCandidate ScanWorld::candidateAt(const fs::path& path) const {
    const auto all = scan();
    const auto found = std::find_if(all.begin(), all.end(), [&](const auto& each) { return each.path == path; });
    if (found == all.end()) throw std::runtime_error("No candidate " + path.native());
    return *found;
}

std::vector<std::string> candidateLines(const std::vector<UninstallCandidate>& candidates, const fs::path& root) {
    std::vector<std::string> lines;
    for (const UninstallCandidate& candidate : candidates) {
        const std::string path =
            Files::isAtOrBelow(candidate.path, root) ? candidate.path.lexically_relative(root) : candidate.path;
        lines.push_back(fmt::format("{} {} {}: {}{}{}{}", textOf(candidate.category), textOf(candidate.confidence),
                                    path, candidate.reason, candidate.defaultSelected ? "; selected" : "",
                                    candidate.isPrivileged ? "; privileged" : "", candidate.isSymlink ? "; link" : ""));
    }
    return lines;
}

}  // namespace tarvik::test
