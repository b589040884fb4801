import QtQuick
import Tarvik

/// Removes applications with everything that belongs to them: the list on the left, what would go on the right.
Item {
    id: tab
    objectName: "uninstallTab"

    Component.onCompleted: UninstallState.refreshUninstall()

    FileDropArea {
        id: dropArea
        objectName: "uninstallDropArea"
        anchors.fill: parent
        onDropped: url => UninstallState.inspectDroppedBundle(url)
    }
    UninstallListColumn {
        id: listColumn
        width: Math.round(Math.max(300, Math.min(380, tab.width * 0.36)))
        height: parent.height
    }
    Rectangle {
        id: edge
        anchors.left: listColumn.right
        width: 1
        height: parent.height
        color: Theme.border
    }
    Item {
        id: detail
        anchors.left: edge.right
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.bottom: log.top

        UninstallHero {
            anchors.fill: parent
            visible: !UninstallState.planned.hasApp
            isTarget: dropArea.containsDrag
        }
        UninstallScanning {
            anchors.fill: parent
            visible: UninstallState.planned.hasApp && !UninstallState.planned.hasPlan
        }
        UninstallPlanView {
            anchors.fill: parent
            visible: UninstallState.planned.hasPlan
        }
    }
    UninstallLogView {
        id: log
        anchors.left: edge.right
        anchors.right: parent.right
        anchors.bottom: parent.bottom
    }
    // Also where an application is shown already, another one can be dropped.
    Rectangle {
        anchors.fill: detail
        anchors.margins: Theme.tiny
        visible: dropArea.containsDrag && UninstallState.planned.hasApp
        radius: Theme.radiusLarge
        color: "transparent"
        border.width: 2
        border.color: Theme.accent
    }
}
