#pragma once

#include "Platform/Basics/Path.h"

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace tarvik {

/// A path on its way through QML: its bytes as they are, and texts for the screen.
struct FilePath {
    Q_GADGET
    QML_VALUE_TYPE(filePath)
    Q_PROPERTY(QString text READ text)
    /// The last component.
    Q_PROPERTY(QString name READ name)
    Q_PROPERTY(bool isEmpty READ isEmpty)

public:
    FilePath() = default;
    explicit FilePath(fs::path bytes) : path(std::move(bytes)) {}

    QString text() const;
    QString name() const;
    bool isEmpty() const { return path.empty(); }

    bool operator==(const FilePath&) const = default;

    fs::path path;
};

}  // namespace tarvik
