import QtQuick
import Tarvik

/// Says that a Mac keeps folders from the program, and leads to where that is changed. Can be sent away for this run.
Item {
    id: place

    property bool isSentAway: false

    visible: AppState.missesFullDiskAccess && !isSentAway
    implicitHeight: visible ? notice.height + Theme.medium : 0

    Notice {
        id: notice
        objectName: "fullDiskAccessNotice"
        x: Theme.margin
        y: Theme.medium
        width: parent.width - 2 * Theme.margin
        text: AppState.fullDiskAccessText
        iconName: "warning"
        tone: "warning"
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text

        Button {
            objectName: "openFullDiskAccessButton"
            anchors.verticalCenter: parent.verticalCenter
            text: "Open Settings"
            Accessible.description: "Opens Full Disk Access in the settings of the system"
            onClicked: Desktop.openSettings(AppState.fullDiskAccessPage)
        }
        IconButton {
            objectName: "sendFullDiskAccessNoticeAwayButton"
            anchors.verticalCenter: parent.verticalCenter
            iconName: "close"
            help: "Hide until the next start"
            onClicked: place.isSentAway = true
        }
    }
    // What is changed in the settings is seen when the window comes back to the front.
    Connections {
        target: Qt.application
        function onStateChanged() {
            if (Qt.application.state === Qt.ApplicationActive)
                AppState.lookAtFullDiskAccess();
        }
    }
}
