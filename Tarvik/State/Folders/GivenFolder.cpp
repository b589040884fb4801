#include "State/Folders/GivenFolder.h"

#include "State/Folders/FoldersState.h"

#include <QFileOpenEvent>

namespace tarvik {

GivenFolder::GivenFolder(QObject& application, FoldersState& folders) : QObject(&folders), m_folders(folders) {
    application.installEventFilter(this);
}

bool GivenFolder::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::FileOpen) return QObject::eventFilter(watched, event);
    m_folders.take(static_cast<QFileOpenEvent*>(event)->url());
    return true;
}

}  // namespace tarvik
