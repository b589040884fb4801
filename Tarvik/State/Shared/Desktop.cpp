#include "State/Shared/Desktop.h"

#include "State/Shared/EngineObjects.h"

namespace tarvik {

Desktop* Desktop::create(QQmlEngine* engine, QJSEngine*) {
    return EngineObjects::desktopOf(*engine);
}

}  // namespace tarvik
