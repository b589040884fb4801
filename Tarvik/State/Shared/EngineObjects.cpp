#include "State/Shared/EngineObjects.h"

#include "State/Shared/AppState.h"
#include "State/Shared/Desktop.h"
#include "State/Shared/WindowDialogs.h"

#include <QQmlEngine>
#include <QVariant>

namespace tarvik::EngineObjects {

namespace {

constexpr const char* stateProperty = "tarvik.state";
constexpr const char* dialogsProperty = "tarvik.dialogs";
constexpr const char* desktopProperty = "tarvik.desktop";

}  // namespace

void give(QQmlEngine& engine, AppState& state, WindowDialogs& dialogs, Desktop& desktop) {
    engine.setProperty(stateProperty, QVariant::fromValue(&state));
    engine.setProperty(dialogsProperty, QVariant::fromValue(&dialogs));
    engine.setProperty(desktopProperty, QVariant::fromValue(&desktop));
    QQmlEngine::setObjectOwnership(&state, QQmlEngine::CppOwnership);
    for (const auto& tab : state.tabs()) QQmlEngine::setObjectOwnership(tab.get(), QQmlEngine::CppOwnership);
    QQmlEngine::setObjectOwnership(&dialogs, QQmlEngine::CppOwnership);
    QQmlEngine::setObjectOwnership(&desktop, QQmlEngine::CppOwnership);
}

AppState* stateOf(const QQmlEngine& engine) {
    return engine.property(stateProperty).value<AppState*>();
}

WindowDialogs* dialogsOf(const QQmlEngine& engine) {
    return engine.property(dialogsProperty).value<WindowDialogs*>();
}

Desktop* desktopOf(const QQmlEngine& engine) {
    return engine.property(desktopProperty).value<Desktop*>();
}

}  // namespace tarvik::EngineObjects
