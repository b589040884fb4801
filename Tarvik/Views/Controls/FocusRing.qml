import QtQuick
import Tarvik

/// Shows where the keyboard is. Lies around its parent; the parent says when.
Rectangle {
    anchors.fill: parent
    anchors.margins: -3
    z: 1
    radius: Theme.radius + 3
    color: "transparent"
    border.width: 2
    border.color: Theme.accent
}
