#pragma once

#include <functional>

class QQuickWindow;

namespace tarvik {

class AppState;

/// The tab that a window shows, for who watches the window from outside. UI thread only.
namespace ShownTab {

/// Calls `act` once nothing is under way any more.
void whenIdle(QQuickWindow& window, const AppState& state, std::function<void()> act);
/// Shows the tab of that name.
void show(QQuickWindow& window, const char* name);

}  // namespace ShownTab

}  // namespace tarvik
