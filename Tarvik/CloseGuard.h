#pragma once

#include <QObject>

namespace tarvik {

class AppState;

/// Keeps the window open while something is under way that must come to its end: closing it then asks the user, and the
/// program quits when that has ended.
class CloseGuard : public QObject {
public:
    /// `state` must outlive the window.
    CloseGuard(QObject& window, AppState& state);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    AppState& m_state;
};

}  // namespace tarvik
