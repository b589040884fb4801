#pragma once

#include <QCoroTask>
#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace tarvik {

class AppState;
struct Host;

/// What one tab of the window shows and does, beside what all tabs share: its lists, its flags and its flows. Owned by
/// `AppState`, which outlives every flow that is started here. UI thread only.
class TabState : public QObject {
    Q_OBJECT
    QML_ANONYMOUS

public:
    explicit TabState(AppState& app);
    ~TabState() override;

    const Host& host() const;

    /// Looks anew at all that the tab shows: its part of a refresh of all.
    virtual void refresh() = 0;
    /// Whether that is still under way, and so long that a refresh of all is dropped meanwhile.
    virtual bool isRefreshing() const { return false; }
    /// Links have come or gone by a move or a way back, and no refresh follows.
    virtual void linksChanged() {}
    /// A run of moves has ended. A refresh follows, or `linksChanged`.
    virtual void runEnded() {}
    /// The window is going: ends what nobody waits for any more.
    virtual void stop() {}

protected:
    AppState& app() const { return m_app; }
    /// Takes over a flow that has been started. What it throws becomes the error line.
    void follow(QCoro::Task<> flow);

private:
    AppState& m_app;
};

}  // namespace tarvik
