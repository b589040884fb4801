#pragma once

#include <QQuickItem>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

class QDragEnterEvent;
class QDragLeaveEvent;
class QDragMoveEvent;
class QDropEvent;

namespace tarvik {

/// A place on which a file can be dropped, in every form that `DropURLReader` reads. Of several files it tells the
/// first.
class FileDropArea : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    /// Whether something that could be dropped is held over it.
    Q_PROPERTY(bool containsDrag READ containsDrag NOTIFY containsDragChanged)

public:
    explicit FileDropArea(QQuickItem* parent = nullptr);
    bool containsDrag() const { return m_containsDrag; }

signals:
    void containsDragChanged();
    void dropped(const QUrl& url);

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void setContainsDrag(bool contains);

    bool m_containsDrag = false;
};

}  // namespace tarvik
