#pragma once

#include <memory>
#include <vector>

namespace tarvik {

class AppState;
class TabState;

/// The tabs of the window. What is listed stands above this room, in `State/Tabs.cpp`: it alone knows them all.
namespace Tabs {

/// One of each, in the order in which they are refreshed. `app` must outlive them.
std::vector<std::unique_ptr<TabState>> all(AppState& app);

}  // namespace Tabs

}  // namespace tarvik
