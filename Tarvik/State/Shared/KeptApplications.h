#pragma once

#include "Platform/Basics/Path.h"

#include <QCoroTask>
#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace tarvik {

/// The applications that the system has kept from being moved because App Management is missing. UI thread only.
class KeptApplications : public QObject {
    Q_OBJECT
    QML_ANONYMOUS

    /// What the user is told; empty when no application is kept. And the page of the settings where it is changed.
    Q_PROPERTY(QString text READ text NOTIFY textChanged)
    Q_PROPERTY(QString settingsPage READ settingsPage CONSTANT)

public:
    /// A move, a way back or a repair that has failed.
    struct Failed {
        fs::path item;
        /// What the user has read.
        std::string reason;
    };

    /// `follow` takes over a flow that has been started.
    explicit KeptApplications(std::function<void(QCoro::Task<>)> follow) : m_follow(std::move(follow)) {}

    /// Those that are kept, each once, however often it has failed.
    const std::vector<Failed>& applications() const { return m_kept; }
    QString text() const;
    QString settingsPage() const;

    /// Takes those that have failed because of it.
    void add(std::vector<Failed> failed);
    /// Looks which are still kept.
    Q_INVOKABLE void lookAgain();
    /// Says no more of them, until another move fails.
    Q_INVOKABLE void forget();

signals:
    void textChanged();

private:
    QCoro::Task<> take(std::vector<Failed> failed);
    QCoro::Task<> tryAgain();
    void setKept(std::vector<Failed> kept);

    const std::function<void(QCoro::Task<>)> m_follow;
    std::vector<Failed> m_kept;
    /// Counts what makes a look that is under way untrue.
    int m_round = 0;
};

}  // namespace tarvik
