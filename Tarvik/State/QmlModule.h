#pragma once

class QQmlEngine;

namespace tarvik {

class AppState;
class Desktop;
class WindowDialogs;

/// Ties the QML of the window to the objects that it shows.
namespace QmlModule {

/// Lets `engine` import the module `Tarvik`, whose singletons `AppState`, `Alerts` and `Desktop` are these three, and
/// the tabs of the first singletons too. What the desktop fails at becomes the error line. They must outlive the
/// engine. Before the engine loads anything; UI thread.
void attach(QQmlEngine& engine, AppState& state, WindowDialogs& dialogs, Desktop& desktop);

}  // namespace QmlModule

}  // namespace tarvik
