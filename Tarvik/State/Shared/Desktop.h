#pragma once

#include "State/Lists/FilePath.h"

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include <memory>

class QJSEngine;
class QQmlEngine;

namespace tarvik {

/// What lies around the window: the file manager, the clipboard, the settings of the system. A test puts its own in the
/// place of the system's. UI thread only; nothing blocks.
class Desktop : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    /// Whether the system shows menus above the window: there the keys of the window belong to them.
    Q_PROPERTY(bool hasMenuBar READ hasMenuBar CONSTANT)
    /// What showing an item in the file manager is called here: "Reveal in Finder".
    Q_PROPERTY(QString revealText READ revealText CONSTANT)

public:
    /// No default for the parent: of a class that can be made from nothing, QML would make an object of its own.
    explicit Desktop(QObject* parent) : QObject(parent) {}
    /// The one that the engine was given by `QmlModule::attach`.
    static Desktop* create(QQmlEngine* engine, QJSEngine* scripts);

    virtual bool hasMenuBar() const = 0;
    virtual QString revealText() const = 0;

    /// Shows the item in the file manager, selected where that can be. What stops it is told by `failed`.
    Q_INVOKABLE virtual void reveal(const tarvik::FilePath& item) = 0;
    /// Puts the path of the item on the clipboard, as text.
    Q_INVOKABLE virtual void copyPath(const tarvik::FilePath& item) = 0;
    /// Opens a page of the system's settings by its address.
    Q_INVOKABLE virtual void openSettings(const QString& page) = 0;

signals:
    void failed(const QString& sentence);
};

/// The desktop of the system that the program runs on.
std::unique_ptr<Desktop> makeSystemDesktop();

}  // namespace tarvik
