#include "Installers/Tracking/ChangesMerger.h"

#include "Installers/Tracking/Snapshotter.h"

#include <algorithm>
#include <string_view>

namespace tarvik::ChangesMerger {

namespace {

/// What stands between tabs, without what is empty.
std::vector<std::string_view> fieldsOf(std::string_view line) {
    std::vector<std::string_view> fields;
    while (!line.empty()) {
        const std::string_view field = line.substr(0, line.find('\t'));
        if (!field.empty()) fields.push_back(field);
        line.remove_prefix(std::min(line.size(), field.size() + 1));
    }
    return fields;
}

void addAppPaths(std::string_view action, std::vector<std::string>& paths) {
    const auto fields = fieldsOf(action);
    if (fields.size() < 3 || fields[0] != "installed-app") return;
    paths.emplace_back(fields[1]);
    paths.emplace_back(fields[2]);
}

bool isPackageLine(const std::string& action) {
    return action.starts_with("installed-pkg\t");
}

}  // namespace

std::vector<std::string> merge(const FileSnapshot& before, const FileSnapshot& after,
                               const std::vector<std::string>& actions, const std::vector<std::string>& livePaths) {
    std::vector<std::string> paths;
    if (std::any_of(actions.begin(), actions.end(), isPackageLine)) {
        paths = Snapshotter::added(before, after);
        paths.insert(paths.end(), livePaths.begin(), livePaths.end());
    }
    for (const std::string& action : actions) addAppPaths(action, paths);
    std::sort(paths.begin(), paths.end());
    paths.erase(std::unique(paths.begin(), paths.end()), paths.end());
    return paths;
}

}  // namespace tarvik::ChangesMerger
