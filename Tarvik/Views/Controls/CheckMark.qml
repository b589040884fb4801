import QtQuick
import Tarvik

/// The mark of the chosen one.
Rectangle {
    implicitWidth: 18
    implicitHeight: 18
    radius: width / 2
    color: Theme.accent
    Accessible.ignored: true

    Icon {
        anchors.centerIn: parent
        name: "check"
        size: 12
        color: Theme.textOnAccent
    }
}
