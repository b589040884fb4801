#pragma once

#include <QObject>

namespace tarvik {

class AppState;

/// Keeps the window open while an item is on its way: closing it then asks the user, and the program quits when that
/// item has ended.
class CloseGuard : public QObject {
public:
    /// `state` must outlive the window.
    CloseGuard(QObject& window, AppState& state);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    AppState& m_state;
};

}  // namespace tarvik
