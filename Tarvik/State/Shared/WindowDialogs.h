#pragma once

#include "State/Shared/Dialogs.h"

#include <QObject>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

#include <coroutine>
#include <deque>

class QJSEngine;
class QQmlEngine;

namespace tarvik {

/// The window's questions, for the alert that shows them: the oldest open one, until it is answered.
class WindowDialogs : public QObject, public Dialogs {
    Q_OBJECT
    QML_NAMED_ELEMENT(Alerts)
    QML_SINGLETON
    Q_PROPERTY(bool isOpen READ isOpen NOTIFY changed)
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString text READ text NOTIFY changed)
    /// What stands between the two, a line each.
    Q_PROPERTY(QStringList details READ details NOTIFY changed)
    /// The first is the default, the second is cancel.
    Q_PROPERTY(QStringList buttons READ buttons NOTIFY changed)

public:
    /// No default for the parent: of a class that can be made from nothing, QML would make an object of its own.
    explicit WindowDialogs(QObject* parent);
    ~WindowDialogs() override;
    /// The one that the engine was given by `QmlModule::attach`.
    static WindowDialogs* create(QQmlEngine* engine, QJSEngine* scripts);

    bool isOpen() const { return !m_questions.empty(); }
    QString title() const;
    QString text() const;
    QStringList details() const;
    QStringList buttons() const;

    /// Answers the question that is shown. Does nothing when none is.
    Q_INVOKABLE void answer(int button);
    /// The same, as its button for it.
    Q_INVOKABLE void cancel() { answer(Dialog::cancelButton); }

    QCoro::Task<int> ask(Dialog dialog) override;
    void dismissAll() override;

signals:
    void changed();

private:
    /// Lives in the frame of the coroutine that waits for the answer.
    struct Question {
        Dialog dialog;
        int answer = 0;
        std::coroutine_handle<> asker;
    };
    struct Answered;

    std::deque<Question*> m_questions;
};

}  // namespace tarvik
