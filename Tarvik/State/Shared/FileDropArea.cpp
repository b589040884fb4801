#include "State/Shared/FileDropArea.h"

#include "State/Shared/DropURLReader.h"

#include <QDragEnterEvent>
#include <QDropEvent>

namespace tarvik {

namespace {

/// Never as a move, after which the sender might remove what it has dropped.
void acceptUnmoved(QDropEvent& event) {
    for (const Qt::DropAction action : {Qt::CopyAction, Qt::LinkAction}) {
        if (!(event.possibleActions() & action)) continue;
        event.setDropAction(action);
        return event.accept();
    }
    event.ignore();
}

}  // namespace

FileDropArea::FileDropArea(QQuickItem* parent) : QQuickItem(parent) {
    setFlag(ItemAcceptsDrops);
}

void FileDropArea::dragEnterEvent(QDragEnterEvent* event) {
    if (DropURLReader::itemOf(*event->mimeData()).types.isEmpty()) return event->ignore();
    acceptUnmoved(*event);
    setContainsDrag(event->isAccepted());
}

void FileDropArea::dragMoveEvent(QDragMoveEvent* event) {
    acceptUnmoved(*event);
}

void FileDropArea::dragLeaveEvent(QDragLeaveEvent*) {
    setContainsDrag(false);
}

void FileDropArea::dropEvent(QDropEvent* event) {
    setContainsDrag(false);
    const auto url = DropURLReader::load(DropURLReader::itemOf(*event->mimeData()));
    if (!url) return event->ignore();
    acceptUnmoved(*event);
    if (event->isAccepted()) emit dropped(*url);
}

void FileDropArea::setContainsDrag(bool contains) {
    if (m_containsDrag == contains) return;
    m_containsDrag = contains;
    emit containsDragChanged();
}

}  // namespace tarvik
