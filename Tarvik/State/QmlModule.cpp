#include "State/QmlModule.h"

#include "State/Lists/AppIcons.h"
#include "State/Shared/AppState.h"
#include "State/Shared/Desktop.h"
#include "State/Shared/EngineObjects.h"

#include <QQmlEngine>

/// Made by the build: registers the types of the module.
extern void qml_register_types_Tarvik();

namespace tarvik::QmlModule {

void attach(QQmlEngine& engine, AppState& state, WindowDialogs& dialogs, Desktop& desktop) {
    // Named, so that the linker takes the registration, which nothing else refers to, out of the static library.
    [[maybe_unused]] const volatile auto registration = &qml_register_types_Tarvik;
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.addImageProvider(QLatin1String(AppIcons::name), new AppIcons);
    EngineObjects::give(engine, state, dialogs, desktop);
    QObject::connect(&desktop, &Desktop::failed, &state, &AppState::setError);
}

}  // namespace tarvik::QmlModule
