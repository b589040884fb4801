#include "Uninstall/UninstallPlanner.h"

#include <algorithm>
#include <functional>

namespace tarvik {

std::vector<std::string> UninstallPlanner::plan(const InstallerSession& session) {
    // As texts: a path sorts before everything in it.
    std::vector<std::string> paths(session.changedPaths.begin(), session.changedPaths.end());
    std::sort(paths.begin(), paths.end(), std::greater<>());
    std::vector<std::string> lines;
    lines.reserve(paths.size() + session.newReceipts.size());
    for (const std::string& path : paths) lines.push_back("trash\t" + path);
    for (const std::string& receipt : session.newReceipts) lines.push_back("forget-receipt\t" + receipt);
    return lines;
}

}  // namespace tarvik
