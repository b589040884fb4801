import QtQuick
import Tarvik

/// The strip above a tab: where one is, and what concerns the whole window.
Item {
    property alias title: label.text

    implicitHeight: Theme.toolbarHeight

    Label {
        id: label
        objectName: "toolbarTitle"
        x: Theme.margin
        anchors.verticalCenter: parent.verticalCenter
        font.weight: Font.DemiBold
        Accessible.role: Accessible.Heading
    }
    Spinner {
        objectName: "preparingSpinner"
        anchors.right: refresh.left
        anchors.rightMargin: Theme.small
        anchors.verticalCenter: parent.verticalCenter
        // What moves shows in the panel below.
        visible: AppState.isBusy && !AppState.isRunning && !AppState.isRestoring && !Alerts.isOpen
        Accessible.name: AppState.isPreparing ? "Looking at what is to be moved" : "Working"
    }
    IconButton {
        id: refresh
        objectName: "refreshAllButton"
        anchors.right: parent.right
        anchors.rightMargin: Theme.large
        anchors.verticalCenter: parent.verticalCenter
        iconName: "refresh"
        help: "Refresh all"
        onClicked: AppState.refreshAll()
    }
    Rectangle {
        anchors.bottom: parent.bottom
        width: parent.width
        height: 1
        color: Theme.border
    }
}
