#include "CloseGuard.h"

#include "State/Shared/AppState.h"

#include <QCoreApplication>
#include <QEvent>

namespace tarvik {

CloseGuard::CloseGuard(QObject& window, AppState& state) : QObject(&window), m_state(state) {
    window.installEventFilter(this);
    connect(
        &state, &AppState::readyToClose, this, [] { QCoreApplication::quit(); }, Qt::QueuedConnection);
}

bool CloseGuard::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::Close || m_state.mayClose()) return QObject::eventFilter(watched, event);
    event->ignore();
    return true;
}

}  // namespace tarvik
