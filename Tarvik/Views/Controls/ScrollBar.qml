import QtQuick
import QtQuick.Templates as T
import Tarvik

/// A thin bar over the edge of what scrolls, seen only where there is something to scroll.
T.ScrollBar {
    id: bar

    implicitWidth: 10
    implicitHeight: 10
    padding: 2
    minimumSize: 0.08
    visible: size < 1
    policy: T.ScrollBar.AsNeeded

    contentItem: Rectangle {
        implicitWidth: 6
        implicitHeight: 6
        radius: 3
        color: Theme.text
        opacity: bar.pressed ? 0.5 : bar.hovered ? 0.38 : 0.2
    }
}
