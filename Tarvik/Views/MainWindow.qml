import QtQuick
import Tarvik

/// The one window.
Window {
    width: 1100
    height: 760
    minimumWidth: 900
    minimumHeight: 600
    visible: true
    title: "Tarvik"
    color: Theme.window

    RootView {
        anchors.fill: parent
        focus: true
    }
}
