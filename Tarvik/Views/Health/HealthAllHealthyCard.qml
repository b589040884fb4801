import QtQuick
import Tarvik

/// Stands where there is nothing to mend.
Card {
    objectName: "allHealthy"

    Column {
        width: parent.width
        spacing: Theme.tiny
        topPadding: Theme.small
        bottomPadding: Theme.small

        Icon {
            anchors.horizontalCenter: parent.horizontalCenter
            name: "seal"
            size: 32
            color: Theme.success
        }
        Label {
            objectName: "allHealthyTitle"
            width: parent.width
            topPadding: Theme.tiny
            horizontalAlignment: Text.AlignHCenter
            text: "All moved apps are healthy."
            font.pixelSize: Theme.headlineSize
            font.weight: Font.DemiBold
        }
        Label {
            objectName: "allHealthyText"
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            text: "Nothing to repair."
            color: Theme.textSecondary
        }
    }
}
