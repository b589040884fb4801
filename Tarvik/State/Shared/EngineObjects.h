#pragma once

class QQmlEngine;

namespace tarvik {

class AppState;
class Desktop;
class WindowDialogs;

/// The objects that an engine shows: its singletons are made from them.
namespace EngineObjects {

/// They must outlive the engine. Before it loads anything; UI thread.
void give(QQmlEngine& engine, AppState& state, WindowDialogs& dialogs, Desktop& desktop);

/// What `give` gave the engine.
AppState* stateOf(const QQmlEngine& engine);
WindowDialogs* dialogsOf(const QQmlEngine& engine);
Desktop* desktopOf(const QQmlEngine& engine);

}  // namespace EngineObjects

}  // namespace tarvik
