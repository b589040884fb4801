#include "MovePlan/UpdateDoubts.h"

#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace tarvik::UpdateDoubts {

namespace {

constexpr std::size_t mostNamed = 5;

template <typename Concerns>
void tell(std::vector<std::string>& sentences, const char* sentence, const std::vector<AppEntry>& moving,
          const Concerns& concerns) {
    std::vector<std::string> names;
    for (const AppEntry& entry : moving)
        if (concerns(entry)) names.push_back(entry.name);
    if (!names.empty()) sentences.push_back(fmt::format(fmt::runtime(sentence), Text::listed(names, mostNamed)));
}

}  // namespace

bool startsAtLogin(const AppEntry& entry) {
    const auto isLaunchList = [](const fs::path& path) {
        const fs::path folder = path.parent_path().filename();
        return folder == "LaunchAgents" || folder == "LaunchDaemons";
    };
    return entry.hasLoginItems || std::any_of(entry.dataPaths.begin(), entry.dataPaths.end(), isLaunchList);
}

std::vector<std::string> about(const std::vector<AppEntry>& moving) {
    std::vector<std::string> sentences;
    // The store updates an application at the place where it has installed it.
    tell(sentences, "The App Store may not update {} on a drive: move back before an update.", moving,
         [](const AppEntry& entry) { return entry.isMacAppStore; });
    // OSSystemExtensionErrorUnsupportedParentBundleLocation in <SystemExtensions/SystemExtensions.h>.
    tell(sentences, "macOS activates the system extension of {} only from /Applications.", moving,
         [](const AppEntry& entry) { return entry.hasSystemExtension; });
    tell(sentences, "A helper of {} starts at login, when the drive may not be there yet.", moving, startsAtLogin);
    return sentences;
}

}  // namespace tarvik::UpdateDoubts
