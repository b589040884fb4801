#include "Platform/Machine/SilentVolumes.h"

#include "Platform/Files/Files.h"
#include "Platform/Files/PatientStatus.h"
#include "Platform/Machine/VolumeList.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

namespace tarvik::SilentVolumes {

namespace {

/// As many as systems follow themselves.
constexpr int mostLinks = 40;

bool isNoted(const Host& host, const fs::path& path) {
    return std::find(host.silentVolumes.begin(), host.silentVolumes.end(), path) != host.silentVolumes.end();
}

/// Adds the components of a path, the first one last.
void push(std::vector<std::string>& components, const fs::path& path) {
    const std::vector<std::string> own(path.begin(), path.end());
    components.insert(components.end(), own.rbegin(), own.rend());
}

}  // namespace

Host noted(const Host& host, std::chrono::milliseconds limit) {
    std::vector<fs::path> asked = host.volumes->mountPaths();
    std::erase_if(asked, [&](const fs::path& path) { return isNoted(host, path); });
    Host known = host;
    auto silent = PatientStatus::silent(asked, limit);
    std::move(silent.begin(), silent.end(), std::back_inserter(known.silentVolumes));
    return known;
}

bool hold(const Host& host, const fs::path& path) {
    if (host.silentVolumes.empty()) return false;
    std::vector<std::string> components;
    push(components, path);
    fs::path place;
    for (int links = 0; !components.empty() && links <= mostLinks;) {
        const std::string name = std::move(components.back());
        components.pop_back();
        if (name == "..") {
            place = place.parent_path();
            continue;
        }
        if (name.empty() || name == ".") continue;
        const fs::path next = place / name;
        if (isNoted(host, next)) return true;
        const auto text = Files::linkText(next);
        if (!text) {
            place = next;
            continue;
        }
        ++links;
        push(components, *text);
    }
    return false;
}

}  // namespace tarvik::SilentVolumes
