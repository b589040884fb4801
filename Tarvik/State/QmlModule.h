#pragma once

class QQmlEngine;

namespace tarvik {

class AppState;
class WindowDialogs;

/// Ties the QML of the window to the objects that it shows.
namespace QmlModule {

/// Lets `engine` import the module `Tarvik`, whose singletons `AppState` and `Alerts` are these two, and the tabs of
/// the former singletons too. They must outlive the engine. Before the engine loads anything; UI thread.
void attach(QQmlEngine& engine, AppState& state, WindowDialogs& dialogs);

}  // namespace QmlModule

}  // namespace tarvik
