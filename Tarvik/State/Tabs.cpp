#include "State/Shared/Tabs.h"

#include "State/Apps/AppsState.h"
#include "State/Dedupe/DedupeState.h"
#include "State/Folders/FoldersState.h"
#include "State/Health/HealthState.h"
#include "State/Symlinks/SymlinksState.h"
#include "State/Uninstall/UninstallState.h"

namespace tarvik::Tabs {

std::vector<std::unique_ptr<TabState>> all(AppState& app) {
    std::vector<std::unique_ptr<TabState>> tabs;
    // A new tab is a new line.
    tabs.push_back(std::make_unique<AppsState>(app));
    tabs.push_back(std::make_unique<FoldersState>(app));
    tabs.push_back(std::make_unique<SymlinksState>(app));
    tabs.push_back(std::make_unique<HealthState>(app));
    tabs.push_back(std::make_unique<UninstallState>(app));
    tabs.push_back(std::make_unique<DedupeState>(app));
    return tabs;
}

}  // namespace tarvik::Tabs
