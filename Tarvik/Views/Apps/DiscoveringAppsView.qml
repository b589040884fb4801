import QtQuick
import Tarvik

/// Stands where the applications will be while they are looked for.
Item {
    objectName: "discoveringApps"

    Column {
        anchors.centerIn: parent
        spacing: Theme.medium
        Spinner {
            anchors.horizontalCenter: parent.horizontalCenter
            size: 24
            Accessible.ignored: true
        }
        Label {
            objectName: "discoveringText"
            text: "Discovering applications..."
            color: Theme.textSecondary
        }
    }
}
