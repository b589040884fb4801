import QtQuick
import QtQuick.Layouts
import Tarvik

/// The drives that something can be moved to, and which of them is the target.
ColumnLayout {
    spacing: Theme.tiny

    RowLayout {
        Layout.leftMargin: Theme.small
        spacing: Theme.tiny

        SectionTitle {
            objectName: "drivesTitle"
            Layout.fillWidth: true
            text: "Target Drive"
        }
        Spinner {
            objectName: "driveSpinner"
            visible: AppState.isScanningDrives
            size: 14
            Accessible.name: "Looking for drives"
        }
        IconButton {
            objectName: "refreshDrivesButton"
            iconName: "refresh"
            help: "Refresh drives"
            onClicked: AppState.refreshDrives()
        }
    }
    Label {
        objectName: "noDrivesText"
        Layout.fillWidth: true
        Layout.leftMargin: Theme.small
        visible: driveList.count === 0
        text: "No external drives connected."
        color: Theme.textSecondary
        wrapMode: Text.Wrap
    }
    RowList {
        id: driveList
        objectName: "driveList"
        Layout.fillWidth: true
        Layout.fillHeight: true
        Accessible.name: "Target drives"
        model: AppState.targetDrives
        spacing: Theme.small
        currentIndex: -1
        clip: true
        delegate: DriveCard {}
    }
}
