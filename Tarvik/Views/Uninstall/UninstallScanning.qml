import QtQuick
import Tarvik

/// Stands where the plan will be while it is made.
Item {
    objectName: "scanningServiceFiles"

    IconButton {
        objectName: "cancelPlanButton"
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.margins: Theme.medium
        iconName: "close"
        help: "Choose no application"
        onClicked: UninstallState.clearSelection()
    }
    Column {
        anchors.centerIn: parent
        width: parent.width - 2 * Theme.huge
        spacing: Theme.small

        AppIcon {
            anchors.horizontalCenter: parent.horizontalCenter
            width: 48
            height: 48
            source: UninstallState.planned.iconSource
        }
        Row {
            anchors.horizontalCenter: parent.horizontalCenter
            topPadding: Theme.small
            spacing: Theme.small
            Spinner {
                anchors.verticalCenter: title.verticalCenter
                Accessible.ignored: true
            }
            Label {
                id: title
                objectName: "scanningTitle"
                text: "Scanning service files…"
                font.pixelSize: Theme.headlineSize
                font.weight: Font.DemiBold
            }
        }
        Label {
            objectName: "scanningText"
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            text: "Wait for a moment while Service Files are being searched"
            color: Theme.textSecondary
        }
    }
}
