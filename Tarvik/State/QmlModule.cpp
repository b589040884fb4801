#include "State/QmlModule.h"

#include "State/AppIcons.h"
#include "State/AppState.h"
#include "State/WindowDialogs.h"

#include <QQmlEngine>

/// Made by the build: registers the types of the module.
extern void qml_register_types_Tarvik();

namespace tarvik::QmlModule {

namespace {

constexpr const char* stateProperty = "tarvik.state";
constexpr const char* dialogsProperty = "tarvik.dialogs";

}  // namespace

void attach(QQmlEngine& engine, AppState& state, WindowDialogs& dialogs) {
    // Named, so that the linker takes the registration, which nothing else refers to, out of the static library.
    [[maybe_unused]] const volatile auto registration = &qml_register_types_Tarvik;
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.addImageProvider(QLatin1String(AppIcons::name), new AppIcons);
    engine.setProperty(stateProperty, QVariant::fromValue(&state));
    engine.setProperty(dialogsProperty, QVariant::fromValue(&dialogs));
    QQmlEngine::setObjectOwnership(&state, QQmlEngine::CppOwnership);
    QQmlEngine::setObjectOwnership(&dialogs, QQmlEngine::CppOwnership);
}

AppState* stateOf(const QQmlEngine& engine) {
    return engine.property(stateProperty).value<AppState*>();
}

WindowDialogs* dialogsOf(const QQmlEngine& engine) {
    return engine.property(dialogsProperty).value<WindowDialogs*>();
}

}  // namespace tarvik::QmlModule
